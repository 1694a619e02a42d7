// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <poll.h>

#include <ctime>

namespace brevane::test {
namespace {

class SlowReaders : public WireTest {
protected:
    SlowReaders() {
        writeFile(root / "a.txt", "a");
        writeFile(root / "large.txt", content);
    }

    // More clients than the pool has threads, each of which sends this request for the large file.
    std::vector<Client> clientsThatAsk(std::string_view request, int receiveBuffer = 0) {
        std::vector<Client> clients;
        for (int count = 0; count < 50; ++count) {
            clients.emplace_back(server.port, count % 2 == 0 ? Family::ipv4 : Family::ipv6,
                                 receiveBuffer);
            clients.back().send(request);
        }
        return clients;
    }

    void expectOthersAreServed() {
        for (int count = 0; count < 100; ++count)
            ASSERT_EQ(get("/a.txt"), textFileAnswer("a"));
        ASSERT_TRUE(get("/large.txt") == whole);
    }

    // The server can neither send to these clients nor receive everything they send.
    std::vector<Client> clientsThatSendABody() {
        auto clients =
            clientsThatAsk("GET /large.txt HTTP/1.1\r\nContent-Length: 1000000000\r\n\r\n");
        for (Client& client : clients)
            client.sendUntilFull(content);
        return clients;
    }

    const std::string content = std::string(5000000, 'l');
    const std::string whole = textFileAnswer(content);
};

TEST_F(SlowReaders, ThatNeverReadHoldNobodyUp) {
    auto clients = clientsThatAsk("GET /large.txt HTTP/1.1\r\n\r\n");
    expectOthersAreServed();
    EXPECT_TRUE(clients.back().receiveAll() == whole);
}

TEST_F(SlowReaders, ThatTakeAByteNowAndThenHoldNobodyUp) {
    auto clients = clientsThatAsk("GET /large.txt HTTP/1.1\r\n\r\n", 4096);
    std::string answer;
    for (std::size_t taken = 1; taken <= 3; ++taken) {
        for (Client& client : clients)
            answer = client.receive(1);
        EXPECT_EQ(answer, whole.substr(taken - 1, 1));
        expectOthersAreServed();
    }
    EXPECT_TRUE(whole.substr(0, 3) + clients.back().receiveAll() == whole);
}

TEST_F(SlowReaders, ThatSendABodyMeanwhileHoldNobodyUpAndCanHaveTheirResponse) {
    auto clients = clientsThatAsk("GET /large.txt HTTP/1.1\r\nContent-Length: 1000000000\r\n\r\n");
    for (Client& client : clients)
        client.sendUntilFull(content);
    expectOthersAreServed();
    for (Client& client : clients)
        EXPECT_TRUE(client.receiveAll() == whole);
}

TEST_F(SlowReaders, ThatSendABodyMeanwhileCostNoProcessorTime) {
    auto clients = clientsThatSendABody();
    expectOthersAreServed();
    const std::clock_t before = std::clock();
    pollfd closed{.fd = clients.back().descriptor(), .events = 0, .revents = 0};
    EXPECT_EQ(::poll(&closed, 1, 300), 0);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 10) << "processor time of 0.3 seconds";
}

TEST_F(SlowReaders, ThatSendSomethingShortlyBeforeTheEndGetEverything) {
    Client client(server.port, Family::ipv4, 4096);
    client.send("GET /large.txt HTTP/1.1\r\n\r\n");
    std::string answer;
    while (answer.size() < whole.size() - 60000)
        answer += client.receive(4096);
    // By now the server has passed everything to the kernel. If it had closed the connection, the
    // next bytes would be answered with RST.
    expectOthersAreServed();
    client.send("more");
    expectOthersAreServed();
    EXPECT_TRUE(answer + client.receiveAll() == whole);
}

TEST_F(SlowReaders, OfASmallFileGetItsBytesThoughOthersAreReadMeanwhile) {
    const std::string small(200000, 's');
    writeFile(root / "small.txt", small);
    writeFile(root / "other.txt", std::string(200000, 'o'));
    std::vector<Client> clients;
    for (int count = 0; count < 20; ++count) {
        clients.emplace_back(server.port, Family::ipv4, 4096, 536);
        clients.back().send("GET /small.txt HTTP/1.1\r\n\r\n");
    }
    for (int count = 0; count < 100; ++count)
        ASSERT_TRUE(get("/other.txt").ends_with("oo"));
    for (Client& client : clients)
        EXPECT_TRUE(client.receiveAll() == textFileAnswer(small));
}

TEST_F(SlowReaders, ThatReadByteByByteGetEverything) {
    Client client(server.port);
    client.send("GET /large.txt HTTP/1.1\r\n\r\n");
    std::string answer;
    while (answer.size() < 5000)
        answer += client.receive(1);
    EXPECT_TRUE(answer + client.receiveAll() == whole);
}

} // namespace
} // namespace brevane::test
