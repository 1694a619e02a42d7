// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <memory>

namespace brevane::test {
namespace {

using Listener = WireTest;

bool answers(std::int64_t port, Family family) {
    try {
        return !answerTo(port, std::array<std::string_view, 1>{"GET / HTTP/1.1\r\n\r\n"}, family)
                    .empty();
    } catch (const std::system_error&) {
        return false;
    }
}

TEST_F(Listener, AnyPortGivesAFreeOneAndSetsIt) {
    FileHTTPServer stopped(root.string(), pool());
    EXPECT_EQ(stopped.port, 0);
    EXPECT_FALSE(stopped.isRunning);
    EXPECT_FALSE(stopped.listener);

    const auto port = stopped.startListener(0);
    ASSERT_TRUE(port);
    EXPECT_NE(*port, 0);
    EXPECT_EQ(stopped.port, *port);
    EXPECT_TRUE(stopped.isRunning);
    EXPECT_TRUE(stopped.listener);
}

TEST_F(Listener, ListensOnBothStacks) {
    EXPECT_TRUE(answers(server.port, Family::ipv4));
    EXPECT_TRUE(answers(server.port, Family::ipv6));
}

TEST_F(Listener, ATakenPortIsAnErrorThatSaysSoAndChangesNothing) {
    FileHTTPServer second(root.string(), pool());
    const auto port = second.startListener(static_cast<std::uint16_t>(server.port));
    ASSERT_FALSE(port);
    EXPECT_EQ(port.error(), std::errc::address_in_use);
    EXPECT_EQ(port.error().message(), "Address already in use");
    EXPECT_EQ(second.port, 0);
    EXPECT_FALSE(second.isRunning);
    EXPECT_FALSE(second.listener);
}

TEST_F(Listener, CancelClosesThePortAtOnceAndItCanBeHadAgain) {
    ASSERT_TRUE(answers(server.port, Family::ipv4));
    server.isRunning = false;
    server.listener->cancel();
    EXPECT_FALSE(answers(server.port, Family::ipv4));
    server.listener->cancel();
    server.listener.reset();

    FileHTTPServer next(root.string(), pool());
    EXPECT_EQ(next.startListener(static_cast<std::uint16_t>(server.port)), server.port);
    EXPECT_TRUE(answers(next.port, Family::ipv4));
}

TEST_F(Listener, CancelAloneClearsIsRunning) {
    server.listener->cancel();
    EXPECT_FALSE(server.isRunning);
}

TEST_F(Listener, DroppingAServerClosesItsPort) {
    auto dropped = std::make_unique<FileHTTPServer>(root.string(), pool());
    const auto port = dropped->startListener(0).value();
    ASSERT_TRUE(answers(port, Family::ipv6));
    dropped.reset();
    EXPECT_FALSE(answers(port, Family::ipv6));
}

TEST_F(Listener, ARequestStillBeingReadEndsWithItsServer) {
    auto dropped = std::make_unique<FileHTTPServer>(root.string(), pool());
    Client client(dropped->startListener(0).value());
    client.send("GET / HTTP/1.1\r\n");
    dropped.reset();
    client.send("\r\n");
    EXPECT_EQ(client.receiveAll(), "");
}

} // namespace
} // namespace brevane::test
