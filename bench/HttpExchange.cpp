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

HttpExchange::HttpExchange(int poll, std::size_t index, std::uint16_t port, const std::string& path)
    : poll_(poll), index_(index), port_(port),
      request_("GET " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n") {}

void HttpExchange::connect(std::chrono::steady_clock::time_point due) {
    due_ = due;
    sent_ = ended_ = false;
    status_ = 0;
    head_.clear();
    bodyBegin_ = total_ = 0;
    expected_ = SIZE_MAX;

    sockaddr_in server{};
    server.sin_family = AF_INET;
    server.sin_port = htons(port_);
    server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    // epoll reports a failure as an event on the socket.
    ::connect(socket_, reinterpret_cast<const sockaddr*>(&server), sizeof server);
}

void HttpExchange::request() {
    send();
    epoll_event event{};
    event.events = sent_ ? EPOLLIN : EPOLLOUT;
    event.data.u64 = index_;
    ::epoll_ctl(poll_, EPOLL_CTL_ADD, socket_, &event);
}

bool HttpExchange::advance() {
    if (!sent_) {
        if (!send()) return finish(false);
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.u64 = index_;
        ::epoll_ctl(poll_, EPOLL_CTL_MOD, socket_, &event);
        return false;
    }
    static std::array<char, 256 * 1024> buffer;
    // Limits the turns, so that a large response does not delay the other exchanges.
    for (int turn = 0; turn < 16; ++turn) {
        const auto count = ::recv(socket_, buffer.data(), buffer.size(), 0);
        if (count < 0) return errno == EAGAIN ? false : finish(false);
        if (count == 0) return finish(true);
        const bool hadBody = bodyBegin_ > 0 && total_ > bodyBegin_;
        total_ += static_cast<std::size_t>(count);
        if (bodyBegin_ == 0) {
            head_.append(buffer.data(), static_cast<std::size_t>(count));
            readHead();
        }
        if (!hadBody && bodyBegin_ > 0 && total_ > bodyBegin_)
            firstByte_ = std::chrono::steady_clock::now();
    }
    return false;
}

bool HttpExchange::send() {
    const auto count = ::send(socket_, request_.data(), request_.size(), MSG_NOSIGNAL);
    sent_ = count == static_cast<ssize_t>(request_.size());
    return sent_;
}

void HttpExchange::readHead() {
    const std::size_t end = head_.find("\r\n\r\n");
    if (end == head_.npos) return;
    bodyBegin_ = end + 4;
    status_ = std::atoi(head_.c_str() + head_.find(' '));
    for (std::size_t field = head_.find("ontent-"); field < end;
         field = head_.find("ontent-", field + 1))
        if (head_.compare(field, 14, "ontent-Length:") == 0 ||
            head_.compare(field, 14, "ontent-length:") == 0)
            expected_ = bodyBegin_ + std::strtoull(head_.c_str() + field + 14, nullptr, 10);
    head_.clear();
}

bool HttpExchange::finish(bool atEnd) {
    ended_ = atEnd;
    // Without a Content-Length, the response ends with the connection.
    if (bodyBegin_ > 0 && expected_ == SIZE_MAX) expected_ = total_;
    ::close(socket_);
    socket_ = -1;
    return true;
}

} // namespace brevane::bench
