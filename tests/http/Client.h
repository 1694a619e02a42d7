// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace brevane::test {

enum class Family { ipv4, ipv6 };

#ifdef __linux__
constexpr int streamSocket = SOCK_STREAM | SOCK_CLOEXEC;
#else
constexpr int streamSocket = SOCK_STREAM; // Children inherit only what they are given.
#endif

/// A connection to a local port with blocking calls. Throws if it cannot connect.
class Client {
public:
    /// `receiveBuffer` limits what the client's kernel receives ahead; `segment` is the maximum
    /// segment size, which also limits what the server's kernel queues. 0 means the system's
    /// default.
    explicit Client(std::int64_t port, Family family = Family::ipv4, int receiveBuffer = 0,
                    int segment = 0)
        : socket(::socket(family == Family::ipv4 ? AF_INET : AF_INET6, streamSocket, 0)) {
        const int on = 1;
        ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        if (receiveBuffer > 0)
            ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
        if (segment > 0)
            ::setsockopt(socket.get(), IPPROTO_TCP, TCP_MAXSEG, &segment, sizeof segment);
        if (connectTo(static_cast<std::uint16_t>(port), family) != 0)
            throw std::system_error(errno, std::generic_category(), "connect");
    }

    /// Returns the number of bytes sent before the server closed.
    std::size_t send(std::string_view bytes) {
        std::size_t sent = 0;
        while (sent < bytes.size()) {
            const auto count =
                ::send(socket.get(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (count < 0) break;
            sent += static_cast<std::size_t>(count);
        }
        return sent;
    }

    /// Sends the bytes repeatedly until the send buffer is full.
    void sendUntilFull(std::string_view bytes) {
        while (::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT) > 0) {
        }
    }

    /// Shuts down the sending half.
    void endSending() { ::shutdown(socket.get(), SHUT_WR); }

    /// Receives at most `most` bytes; empty at end of stream or on a reset.
    std::string receive(std::size_t most) {
        std::string bytes(most, '\0');
        bytes.resize(receiveInto(bytes));
        return bytes;
    }

    /// Receives everything until end of stream.
    std::string receiveAll() {
        std::string all;
        std::string bytes(256 * 1024, '\0');
        while (const std::size_t count = receiveInto(bytes))
            all.append(bytes, 0, count);
        return all;
    }

    /// Receives until end of stream and returns the number of bytes.
    std::size_t countAll() {
        std::size_t all = 0;
        std::string bytes(256 * 1024, '\0');
        while (const std::size_t count = receiveInto(bytes))
            all += count;
        return all;
    }

    [[nodiscard]] int descriptor() const { return socket.get(); }
    void close() { socket.close(); }

private:
    std::size_t receiveInto(std::span<char> buffer) {
        const auto count = ::recv(socket.get(), buffer.data(), buffer.size(), 0);
        return count < 0 ? 0 : static_cast<std::size_t>(count);
    }

    int connectTo(std::uint16_t port, Family family) {
        if (family == Family::ipv4) {
            sockaddr_in address{};
            address.sin_family = AF_INET;
            address.sin_port = htons(port);
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address),
                             sizeof address);
        }
        sockaddr_in6 address{};
        address.sin6_family = AF_INET6;
        address.sin6_port = htons(port);
        address.sin6_addr = in6addr_loopback;
        return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }

    Descriptor socket;
};

/// Sends the pieces of a request one after the other and returns the whole response.
inline std::string answerTo(std::int64_t port, std::span<const std::string_view> pieces,
                            Family family) {
    Client client(port, family);
    for (const std::string_view piece : pieces)
        client.send(piece);
    return client.receiveAll();
}

} // namespace brevane::test
