// SPDX-License-Identifier: MIT
#include "LoopbackPort.h"

#include "Descriptor.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <system_error>

namespace brevane::test {
namespace {

// Listens on one loopback address, on a port picked by the system.
class LoopbackListener {
public:
    explicit LoopbackListener(int family) : socket_(::socket(family, SOCK_STREAM, 0)) {
        sockaddr_in6 any{};
        any.sin6_family = static_cast<sa_family_t>(family);
        socklen_t size = sizeof any;
        if (family == AF_INET) {
            auto& address = reinterpret_cast<sockaddr_in&>(any);
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            size = sizeof address;
        } else {
            any.sin6_addr = in6addr_loopback;
        }
        isThere_ = ::bind(socket_.get(), reinterpret_cast<const sockaddr*>(&any), size) == 0 &&
                   ::listen(socket_.get(), 1) == 0;
        ::getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&any), &size);
        port_ = ntohs(any.sin6_port); // at the same offset in sockaddr_in
    }

    [[nodiscard]] bool isThere() const { return isThere_; }
    [[nodiscard]] std::uint16_t port() const { return port_; }
    void close() { socket_.close(); }

private:
    Descriptor socket_;
    bool isThere_ = false;
    std::uint16_t port_ = 0;
};

TEST(LoopbackPort, IsInUseWhereAnotherProgramListensOnOneLoopbackAddressOnly) {
    for (const int family : {AF_INET, AF_INET6}) {
        LoopbackListener other(family);
        if (!other.isThere()) continue; // IPv6 is not available.
        const auto taken = loopbackPort(other.port());
        ASSERT_FALSE(taken);
        EXPECT_EQ(taken.error(), std::errc::address_in_use);
        other.close();
        EXPECT_EQ(loopbackPort(other.port()), other.port());
    }
}

TEST(LoopbackPort, IsAnyFreeOneWhereNoneIsRequested) {
    const auto port = loopbackPort(0);
    ASSERT_TRUE(port);
    EXPECT_NE(*port, 0);
    EXPECT_EQ(loopbackPort(*port), *port);
}

} // namespace
} // namespace brevane::test
