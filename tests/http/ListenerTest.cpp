// SPDX-License-Identifier: MIT
#include "WireTest.h"

#ifdef __linux__
#include <fcntl.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#endif

#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

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

#ifdef __linux__
TEST_F(Listener, ACallThatAcceptsNeverBlocks) {
    int found = 0;
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        int accepts = 0;
        socklen_t length = sizeof accepts;
        sockaddr_in6 address{};
        socklen_t addressLength = sizeof address;
        if (getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &accepts, &length) != 0 ||
            accepts == 0)
            continue;
        getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &addressLength);
        if (ntohs(address.sin6_port) != server.port) continue;
        ++found;
        EXPECT_NE(fcntl(descriptor, F_GETFL) & O_NONBLOCK, 0);
    }
    EXPECT_EQ(found, 1);
}
#endif

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
    const auto port = dropped->startListener(0).value();
    Client client(port);
    client.send("GET / HTTP/1.1\r\n");
    ASSERT_TRUE(answers(port, Family::ipv4)); // The connection before is accepted too.
    dropped.reset();
    client.send("\r\n");
    EXPECT_EQ(client.receiveAll(), "");
}

TEST_F(Listener, ARequestStillBeingReadEndsWithItsServerWhileAResponseIsUnderWay) {
    const std::string content(50'000'000, 'l');
    writeFile(root / "large.txt", content);
    auto dropped = std::make_unique<FileHTTPServer>(root.string(), pool());
    const auto port = dropped->startListener(0).value();
    Client reading(port);
    reading.send("GET / HTTP/1.1\r\n");
    Client answered(port);
    answered.send("GET /large.txt HTTP/1.1\r\n\r\n");
    EXPECT_EQ(answered.receive(15), "HTTP/1.1 200 OK");
    dropped.reset();
    reading.send("\r\n");
    EXPECT_EQ(reading.receiveAll(), "");
    EXPECT_TRUE(answered.receiveAll().ends_with(content.substr(0, 1000)));
}

#ifdef __linux__
// The socket of this process that listens on the port, or -1.
int listeningSocket(std::int64_t port) {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int number = std::stoi(entry.path().filename().string());
        int listening = 0;
        socklen_t size = sizeof listening;
        sockaddr_in6 address{};
        socklen_t addressSize = sizeof address;
        if (::getsockopt(number, SOL_SOCKET, SO_ACCEPTCONN, &listening, &size) == 0 &&
            listening != 0 &&
            ::getsockname(number, reinterpret_cast<sockaddr*>(&address), &addressSize) == 0 &&
            ntohs(address.sin6_port) == port)
            return number;
    }
    return -1;
}

TEST_F(Listener, ChildProcessesGetNeitherItNorItsConnections) {
    Client client(server.port);
    client.send("GET / HTTP/1.1\r\n");
    ASSERT_TRUE(answers(server.port, Family::ipv4)); // The connection before is accepted too.
    // Reads the flags from /proc/self/fdinfo, since the server may be closing a descriptor.
    int sockets = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code closed;
        if (!read_symlink(entry.path(), closed).string().starts_with("socket:")) continue;
        std::ifstream info("/proc/self/fdinfo/" + entry.path().filename().string());
        std::string word;
        while (info >> word && word != "flags:") {
        }
        if (unsigned flags = 0; info >> std::oct >> flags) {
            EXPECT_NE(flags & O_CLOEXEC, 0U) << entry.path();
            ++sockets;
        }
    }
    EXPECT_GE(sockets, 3);
}

TEST_F(Listener, AListenerThatFailsClearsIsRunning) {
    ASSERT_TRUE(server.isRunning);
    ::shutdown(listeningSocket(server.port), SHUT_RDWR);
    while (server.isRunning)
        std::this_thread::yield();
    EXPECT_FALSE(answers(server.port, Family::ipv4));
    server.listener->cancel();
}

// Moves the calling thread to a network namespace of its own with this IPv6 setting enabled.
// Returns false if that is not permitted.
bool enterNetwork(const std::string& setting) {
    if (::unshare(CLONE_NEWNET) != 0) return false;
    const Descriptor any(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ifreq loopback{};
    loopback.ifr_name[0] = 'l';
    loopback.ifr_name[1] = 'o';
    loopback.ifr_flags = IFF_UP;
    std::ofstream("/proc/sys/net/ipv6/" + setting) << 1;
    return ::ioctl(any.get(), SIOCSIFFLAGS, &loopback) == 0;
}

class ListenerInItsOwnNetwork : public WireTest {
protected:
    void expectAnswers(const std::string& setting, bool overIpv6) {
        bool allowed = false;
        std::thread([&] {
            allowed = enterNetwork(setting);
            if (!allowed) return;
            FileHTTPServer alone(root.string(), pool());
            const auto port = alone.startListener(0);
            ASSERT_TRUE(port) << port.error().message();
            EXPECT_TRUE(answers(*port, Family::ipv4));
            EXPECT_EQ(answers(*port, Family::ipv6), overIpv6);
        }).join();
        if (!allowed) GTEST_SKIP() << "making a network takes root's rights";
    }
};

TEST_F(ListenerInItsOwnNetwork, ListensOnIpv4AloneWhereThereIsNoIpv6) {
    expectAnswers("conf/all/disable_ipv6", false);
}

TEST_F(ListenerInItsOwnNetwork, ListensOnBothStacksAlsoWhereTheSystemKeepsThemApart) {
    expectAnswers("bindv6only", true);
}
#endif

} // namespace
} // namespace brevane::test
