// SPDX-License-Identifier: MIT
#include "ServeFolderProcess.h"
#include "WireTest.h"

#include <vector>

namespace brevane::test {
namespace {

// With 256 descriptors, a quarter is reserved for the rest of the program.
constexpr int limit = 256;
// Each thread may briefly use two more while connections are being closed.
constexpr std::size_t most = 192 + 32;

class DescriptorReserve : public ::testing::Test {
protected:
    DescriptorReserve() {
        writeFile(folder_ / "a.txt", "a");
        // More than the socket buffers of both ends hold.
        writeFile(folder_ / "large.txt", std::string(64 << 20, 'l'));
    }

    std::string get(std::string_view target) {
        const std::string request = "GET " + std::string(target) + " HTTP/1.1\r\n\r\n";
        return answerTo(server_.port(), std::array{std::string_view(request)}, Family::ipv4);
    }

    TemporaryFolder folder_;
    ServeFolderProcess server_{folder_.path, limit};
};

TEST_F(DescriptorReserve, IsKeptFromHalfRequestsOfWhichTheOldestMakeRoom) {
    std::vector<Client> clients;
    for (int count = 0; count < 2 * limit; ++count) {
        clients.emplace_back(server_.port());
        clients.back().send("GET /a.txt HTTP/1.1\r\n");
        ASSERT_LE(server_.openDescriptors(), most);
    }
    EXPECT_EQ(clients.front().receiveAll(), "");
    EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
    clients.back().send("\r\n");
    EXPECT_EQ(clients.back().receiveAll(), textFileAnswer("a"));
}

TEST_F(DescriptorReserve, IsKeptFromDownloadsThatAreNotReadOfWhichTheOldestMakeRoom) {
    std::vector<Client> clients;
    for (int count = 0; count < limit; ++count) {
        clients.emplace_back(server_.port(), Family::ipv4, 4096);
        clients.back().send("GET /large.txt HTTP/1.1\r\n\r\n");
        ASSERT_EQ(clients.back().receive(4), "HTTP");
        ASSERT_LE(server_.openDescriptors(), most);
    }
    EXPECT_LT(clients.front().countAll(), 64U << 20);
    EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
    EXPECT_GT(clients.back().countAll(), 64U << 20);
}

TEST_F(DescriptorReserve, LeavesThoseAloneThatGetOn) {
    Client reader(server_.port(), Family::ipv4, 4096);
    reader.send("GET /large.txt HTTP/1.1\r\n\r\n");
    std::size_t received = reader.receive(4).size();
    std::vector<Client> clients;
    for (int count = 0; count < 2 * limit; ++count) {
        clients.emplace_back(server_.port());
        clients.back().send("GET /a.txt HTTP/1.1\r\n");
        for (int piece = 0; piece < 16; ++piece)
            received += reader.receive(64 * 1024).size();
        // This one and all before it have been accepted.
        if (count % 64 != 0) continue;
        ASSERT_EQ(get("/a.txt"), textFileAnswer("a"));
    }
    EXPECT_GT(received + reader.countAll(), 64U << 20);
}

} // namespace
} // namespace brevane::test
