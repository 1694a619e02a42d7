// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <fstream>
#include <vector>

namespace brevane::test {
namespace {

class Memory : public WireTest {
protected:
    Memory() {
        writeFile(root / "a.txt", "a");
        // More than the socket buffers of both ends hold.
        writeFile(root / "large.txt", std::string(largeSize, 'l'));
    }

    // A memory figure of this process from /proc/self/status, in bytes.
    static std::size_t memory(const std::string& name) {
        std::ifstream status("/proc/self/status");
        std::string word;
        while (status >> word && word != name + ":") {
        }
        std::size_t kilobytes = 0;
        status >> kilobytes;
        return kilobytes * 1024;
    }

    static constexpr std::size_t mebibyte = 1 << 20;
    static constexpr std::size_t largeSize = 64 * mebibyte;
};

TEST_F(Memory, OfALongHeadIsFreeBeforeItsResponseGoesOut) {
    constexpr int count = 30;
    const std::string head =
        "GET /large.txt HTTP/1.1\r\nX: " + std::string(8 * mebibyte, 'x') + "\r\n\r\n";
    const std::size_t before = memory("VmRSS");
    std::vector<Client> clients;
    for (int index = 0; index < count; ++index) {
        clients.emplace_back(server.port, Family::ipv4, 4096);
        clients.back().send(head);
        ASSERT_EQ(clients.back().receive(4), "HTTP");
    }
    EXPECT_LT(memory("VmRSS"), before + 2 * count * mebibyte);
}

TEST_F(Memory, OfDownloadsIsNotThatOfTheirFiles) {
    constexpr int count = 20;
    const std::size_t before = memory("VmRSS");
    std::vector<Client> clients;
    for (int index = 0; index < count; ++index) {
        clients.emplace_back(server.port, Family::ipv4, 4096);
        clients.back().send("GET /large.txt HTTP/1.1\r\n\r\n");
        ASSERT_EQ(clients.back().receive(4), "HTTP");
    }
    EXPECT_LT(memory("VmRSS"), before + count * mebibyte);
}

TEST_F(Memory, OfAHeadWithoutAnEndIsBounded) {
    const std::size_t before = memory("VmHWM");
    const std::string piece(mebibyte, 'x');
    Client client(server.port);
    // A first piece whose size, doubled repeatedly, comes to just below the limit on all heads.
    ASSERT_TRUE(client.send(piece.substr(0, 63 * 1024)));
    ASSERT_EQ(get("/a.txt"), textFileAnswer("a"));
    std::size_t sent = 0;
    while (sent < 600 && client.send(piece) == piece.size())
        ++sent;
    EXPECT_GE(sent, 200U);
    EXPECT_LT(sent, 300U);
    EXPECT_LT(memory("VmHWM"), before + 300 * mebibyte);
    EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
}

TEST_F(Memory, OfAllHeadsWithoutAnEndIsBoundedByClosingTheLargest) {
    FileHTTPServer second(root.native(), pool());
    ASSERT_TRUE(second.startListener(0));
    std::vector<Client> clients;
    const auto begin = [&](std::int64_t port, std::size_t mebibytes) {
        clients.emplace_back(port);
        clients.back().send("GET /a.txt HTTP/1.1\r\nX: " + std::string(mebibytes * mebibyte, 'x'));
    };
    begin(server.port, 90);
    begin(second.port, 100);
    begin(server.port, 80);
    EXPECT_EQ(clients[1].receiveAll(), "");
    for (const std::size_t index : {0U, 2U}) {
        clients[index].send("\r\n\r\n");
        EXPECT_EQ(clients[index].receiveAll(), textFileAnswer("a"));
    }
}

} // namespace
} // namespace brevane::test
