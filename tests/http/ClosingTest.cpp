// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <poll.h>
#include <sys/socket.h>

#include <thread>

namespace brevane::test {
namespace {

class Closing : public WireTest {
protected:
    Closing() { writeFile(root / "a.txt", "a"); }

    static void resetOnClose(const Client& client) {
        const linger now{.l_onoff = 1, .l_linger = 0};
        ::setsockopt(client.descriptor(), SOL_SOCKET, SO_LINGER, &now, sizeof now);
    }

    static bool isReadableWithin(const Client& client, int milliseconds) {
        pollfd wanted{.fd = client.descriptor(), .events = POLLIN, .revents = 0};
        return ::poll(&wanted, 1, milliseconds) == 1;
    }
};

TEST_F(Closing, TheAnswerToAPostArrivesWholeThoughItsBodyIsLargeAHundredTimesOfAHundred) {
    const std::string head = "POST /a.txt HTTP/1.1\r\nContent-Length: 52428800\r\n\r\n";
    const std::string body(52428800, 'b');
    for (int count = 0; count < 100; ++count) {
        Client client(server.port, count % 2 == 0 ? Family::ipv4 : Family::ipv6);
        ASSERT_EQ(client.send(head), head.size());
        ASSERT_EQ(client.send(body), body.size());
        ASSERT_EQ(client.receiveAll(), methodNotAllowed);
    }
}

TEST_F(Closing, AFileIsSentWholeThoughTheClientSendsMoreMeanwhile) {
    const std::string content(3000000, 'c');
    writeFile(root / "large.txt", content);
    Client client(server.port);
    client.send("GET /large.txt HTTP/1.1\r\n\r\n");
    std::string answer = client.receive(1);
    client.send("more that nobody asked for");
    answer += client.receiveAll();
    EXPECT_EQ(answer, textFileAnswer(content));
}

TEST_F(Closing, AClientThatSendsWithoutEndIsCutOff) {
    Client client(server.port);
    client.send("POST / HTTP/1.1\r\n\r\n");
    const std::string mebibyte(1 << 20, 'x');
    int sent = 0;
    while (sent < 1024 && client.send(mebibyte) == mebibyte.size())
        ++sent;
    EXPECT_GE(sent, 128);
    EXPECT_LT(sent, 1024);
    EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
}

TEST_F(Closing, AClientThatGoesOnSendingIsCutOffAfterTenSeconds) {
    Client client(server.port);
    client.send("POST / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.receiveAll(), methodNotAllowed);
    pollfd broken{.fd = client.descriptor(), .events = 0, .revents = 0};
    while (client.send("x") == 1)
        ::poll(&broken, 1, 50);
    EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
}

TEST_F(Closing, AClientThatHasEndedItsHalfStillGetsTheAnswer) {
    for (const Family family : {Family::ipv4, Family::ipv6}) {
        Client client(server.port, family);
        client.send("GET /a.txt HTTP/1.1\r\n\r\n");
        client.endSending();
        EXPECT_EQ(client.receiveAll(), textFileAnswer("a"));
    }
}

TEST_F(Closing, NothingIsReadAfterTheRequestWhenNothingFollows) {
    Client client(server.port);
    client.send("GET /a.txt HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.receiveAll(), textFileAnswer("a"));
    // The whole connection is closed, not only its sending half: later bytes are answered with RST.
    pollfd broken{.fd = client.descriptor(), .events = 0, .revents = 0};
    while (client.send("x") == 1)
        ::poll(&broken, 1, 1);
}

TEST_F(Closing, ClientsThatResetInTheMiddleHurtNobody) {
    writeFile(root / "large", std::string(3000000, 'l'));
    for (const std::string_view part :
         {"", "GET", "GET /large HTTP/1.1\r\n", "GET /large HTTP/1.1\r\n\r\n",
          "POST / HTTP/1.1\r\n\r\nbody"})
        for (int count = 0; count < 50; ++count) {
            Client client(server.port);
            client.send(part);
            resetOnClose(client);
        }
    for (int count = 0; count < 50; ++count) {
        Client client(server.port);
        client.send("GET /large HTTP/1.1\r\n\r\n");
        client.receive(1000);
        resetOnClose(client);
    }
    EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
}

TEST_F(Closing, AnIdleConnectionStaysOpenAndIsAnsweredInTheEnd) {
    Client client(server.port);
    client.send("GET /a.txt HTTP/1.1\r\n");
    EXPECT_FALSE(isReadableWithin(client, 300));
    client.send("\r\n");
    EXPECT_EQ(client.receiveAll(), textFileAnswer("a"));
}

TEST_F(Closing, TheEndOfThePoolEndsEveryConnection) {
    writeFile(root / "large", std::string(30000000, 'l'));
    auto ending = std::make_unique<ServerPool>();
    auto served = std::make_unique<FileHTTPServer>(root.string(), *ending);
    const auto port = served->startListener(0).value();
    Client idle(port);
    idle.send("GET / HTTP/1.1\r\n");
    Client downloading(port);
    downloading.send("GET /large HTTP/1.1\r\n\r\n");
    EXPECT_EQ(downloading.receive(4), "HTTP");
    Client draining(port);
    draining.send("POST / HTTP/1.1\r\n\r\n");
    EXPECT_EQ(draining.receiveAll(), methodNotAllowed);

    served.reset();
    ending.reset();
    EXPECT_EQ(idle.receiveAll(), "");
    EXPECT_LT(downloading.receiveAll().size(), 30000000U);
}

} // namespace
} // namespace brevane::test
