// SPDX-License-Identifier: MIT
#include "LoopbackPort.h"

#include "Descriptor.h"
#include "SystemError.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

namespace brevane {

namespace {

Descriptor probeSocket(int family) {
    Descriptor opened(::socket(family, SOCK_STREAM, 0));
    if (opened.isOpen()) ::fcntl(opened.get(), F_SETFD, FD_CLOEXEC);
    return opened;
}

sockaddr_in ipv4Loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

sockaddr_in6 ipv6Loopback(std::uint16_t port) {
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(port);
    address.sin6_addr = in6addr_loopback;
    return address;
}

// Whether something accepts connections there. No answer counts as yes: the backlog may be full.
template <class Address>
bool answers(int family, const Address& address) {
    constexpr int milliseconds = 50;
    const Descriptor client = probeSocket(family);
    if (!client.isOpen()) return false;
    ::fcntl(client.get(), F_SETFL, O_NONBLOCK);
    if (::connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return true;
    if (errno != EINPROGRESS) return false;
    pollfd connecting{.fd = client.get(), .events = POLLOUT, .revents = 0};
    if (::poll(&connecting, 1, milliseconds) == 0) return true;
    int error = 0;
    socklen_t size = sizeof error;
    return ::getsockopt(client.get(), SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

// Without SO_REUSEADDR the system skips ports that are taken on any address.
std::expected<std::uint16_t, std::error_code> freePort() {
    const Descriptor probe = probeSocket(AF_INET);
    sockaddr_in address = ipv4Loopback(0);
    socklen_t size = sizeof address;
    if (!probe.isOpen() ||
        ::bind(probe.get(), reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        ::getsockname(probe.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        return std::unexpected(lastSystemError());
    return ntohs(address.sin_port);
}

bool isTaken(std::uint16_t port) {
    return answers(AF_INET, ipv4Loopback(port)) || answers(AF_INET6, ipv6Loopback(port));
}

} // namespace

std::expected<std::uint16_t, std::error_code> loopbackPort(std::uint16_t requested) {
    constexpr int attempts = 16;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const auto port = requested == 0 ? freePort() : requested;
        if (!port || !isTaken(*port)) return port;
        if (requested != 0) break;
    }
    return std::unexpected(std::make_error_code(std::errc::address_in_use));
}

} // namespace brevane
