// SPDX-License-Identifier: MIT
#include "Response.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace brevane::test {
namespace {

TEST(ErrorResponse, SaysItsStatusInOneLineOfText) {
    const Response response = errorResponse(Status::notFound);
    EXPECT_EQ(response.head(), "HTTP/1.1 404 Not Found\r\nContent-Type: text/plain\r\n"
                               "Content-Length: 13\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(response.body(), "404 Not Found");
}

TEST(ErrorResponse, AnyOtherStatusIsAnError) {
    const Response response = errorResponse(Status(500));
    EXPECT_EQ(response.head(), "HTTP/1.1 500 Error\r\nContent-Type: text/plain\r\n"
                               "Content-Length: 9\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(response.body(), "500 Error");
}

TEST(FileResponse, OfAFifoThatHasTakenAFilesPlaceWaitsForNobody) {
    const TemporaryFolder folder;
    const std::string fifo = folder / "fifo";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0666), 0);
    EXPECT_EQ(fileResponse(fifo, false).body(), "403 Forbidden");
}

} // namespace
} // namespace brevane::test
