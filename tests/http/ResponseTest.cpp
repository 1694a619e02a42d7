// SPDX-License-Identifier: MIT
#include "Response.h"

#include <gtest/gtest.h>

namespace brevane {
namespace {

TEST(ErrorResponse, SaysItsStatusInOneLineOfText) {
    const Response response = errorResponse(404);
    EXPECT_EQ(response.head, "HTTP/1.1 404 Not Found\r\nContent-Type: text/plain\r\n"
                             "Content-Length: 13\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(response.bodyBytes(), "404 Not Found");
}

TEST(ErrorResponse, AnyOtherStatusIsAnError) {
    const Response response = errorResponse(500);
    EXPECT_EQ(response.head, "HTTP/1.1 500 Error\r\nContent-Type: text/plain\r\n"
                             "Content-Length: 9\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(response.bodyBytes(), "500 Error");
}

} // namespace
} // namespace brevane
