// SPDX-License-Identifier: MIT
#include "DoorbellSocket.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>

namespace brevane {

namespace {

struct Address {
    sockaddr_un value{};
    socklen_t size = sizeof(sa_family_t);

    /// An empty name makes the kernel pick one (autobind).
    explicit Address(std::string_view name) {
        value.sun_family = AF_UNIX;
        if (name.empty()) return;
        // A name in the abstract namespace starts with a NUL; a path ends with one.
        const std::size_t start = name.starts_with('/') ? 0 : 1;
        const std::size_t length = std::min(name.size(), sizeof value.sun_path - 1);
        name.copy(value.sun_path + start, length);
        size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
    }

    [[nodiscard]] const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&value); }
};

bool isOwnUser(msghdr& header) {
    for (cmsghdr* part = CMSG_FIRSTHDR(&header); part != nullptr;
         part = CMSG_NXTHDR(&header, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_CREDENTIALS) continue;
        ucred credentials;
        std::memcpy(&credentials, CMSG_DATA(part), sizeof credentials);
        return credentials.uid == geteuid();
    }
    return false;
}

} // namespace

DoorbellSocket::DoorbellSocket() : DoorbellSocket("") {}

DoorbellSocket::DoorbellSocket(std::string_view name)
    : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    const int on = 1;
    setsockopt(socket_, SOL_SOCKET, SO_PASSCRED, &on, sizeof on);
    const Address address(name);
    if (bind(socket_, address.get(), address.size) == 0) return;
    close(socket_);
    socket_ = -1;
}

DoorbellSocket::~DoorbellSocket() {
    if (socket_ >= 0) close(socket_);
}

bool DoorbellSocket::ring(std::string_view name, std::string_view message) {
    const Address address(name);
    return sendto(socket_, message.data(), message.size(), MSG_NOSIGNAL, address.get(),
                  address.size) >= 0;
}

std::optional<DoorbellSocket::Ring> DoorbellSocket::nextRing() {
    while (true) {
        sockaddr_un sender{};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control{};
        msghdr header{};
        std::array<char, longestMessage> message{};
        iovec bytes{.iov_base = message.data(), .iov_len = message.size()};
        header.msg_iov = &bytes;
        header.msg_iovlen = 1;
        header.msg_name = &sender;
        header.msg_namelen = sizeof sender;
        header.msg_control = control.data();
        header.msg_controllen = control.size();
        const ssize_t size = recvmsg(socket_, &header, MSG_CMSG_CLOEXEC);
        if (size < 0) return std::nullopt;
        if (!isOwnUser(header)) continue;
        Ring ring{.caller = {}, .message = {message.data(), static_cast<std::size_t>(size)}};
        constexpr std::size_t start = offsetof(sockaddr_un, sun_path) + 1;
        if (header.msg_namelen > start)
            ring.caller.assign(sender.sun_path + 1, header.msg_namelen - start);
        return ring;
    }
}

bool DoorbellSocket::waitForRing(std::chrono::milliseconds timeout) {
    pollfd wait{.fd = socket_, .events = POLLIN, .revents = 0};
    return poll(&wait, 1, static_cast<int>(timeout.count())) > 0 && nextRing().has_value();
}

} // namespace brevane
