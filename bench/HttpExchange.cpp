// SPDX-License-Identifier: MIT
#include "HttpExchange.h"

#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

namespace brevane::bench {

HttpExchange::HttpExchange(int epoll, std::size_t number, std::uint16_t serverPort,
                           const std::string& path)
    : poll(epoll), index(number), port(serverPort),
      request("GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n") {}

void HttpExchange::begin(std::chrono::steady_clock::time_point due) {
    dueTime = due;
    sent = ended = false;
    code = 0;
    head.clear();
    total = 0;
    expected = SIZE_MAX;

    sockaddr_in server{};
    server.sin_family = AF_INET;
    server.sin_port = htons(port);
    server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socket = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    // A failure shows as an event on the socket.
    ::connect(socket, reinterpret_cast<const sockaddr*>(&server), sizeof server);
    send();
    epoll_event event{};
    event.events = sent ? EPOLLIN : EPOLLOUT;
    event.data.u64 = index;
    ::epoll_ctl(poll, EPOLL_CTL_ADD, socket, &event);
}

bool HttpExchange::advance() {
    if (!sent) {
        if (!send()) return finish(false);
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.u64 = index;
        ::epoll_ctl(poll, EPOLL_CTL_MOD, socket, &event);
        return false;
    }
    static std::array<char, 256 * 1024> buffer;
    // In turns, so that a large response does not hold up the others' latencies.
    for (int turn = 0; turn < 16; ++turn) {
        const auto count = ::recv(socket, buffer.data(), buffer.size(), 0);
        if (count < 0) return errno == EAGAIN ? false : finish(false);
        if (count == 0) return finish(true);
        total += static_cast<std::size_t>(count);
        if (expected == SIZE_MAX) {
            head.append(buffer.data(), static_cast<std::size_t>(count));
            readHead();
        }
    }
    return false;
}

bool HttpExchange::send() {
    const auto count = ::send(socket, request.data(), request.size(), MSG_NOSIGNAL);
    sent = count == static_cast<ssize_t>(request.size());
    return sent;
}

void HttpExchange::readHead() {
    const std::size_t end = head.find("\r\n\r\n");
    const std::size_t length = head.find("ontent-");
    if (end == head.npos) return;
    code = std::atoi(head.c_str() + head.find(' '));
    for (std::size_t field = length; field < end; field = head.find("ontent-", field + 1))
        if (head.compare(field, 14, "ontent-Length:") == 0 ||
            head.compare(field, 14, "ontent-length:") == 0)
            expected = end + 4 + std::strtoull(head.c_str() + field + 14, nullptr, 10);
    // Chunked: its end is the connection's.
    if (expected == SIZE_MAX) expected = SIZE_MAX - 1;
    head.clear();
}

bool HttpExchange::finish(bool atEnd) {
    ended = atEnd;
    if (expected == SIZE_MAX - 1) expected = total;
    ::close(socket);
    return true;
}

} // namespace brevane::bench
