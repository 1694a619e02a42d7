// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace brevane::bench {

/// One request at a time, each on a new connection, which is registered with an epoll instance.
class HttpExchange {
public:
    HttpExchange(int poll, std::size_t index, std::uint16_t port, const std::string& path);

    /// Connects. The latency counts from `due`.
    void connect(std::chrono::steady_clock::time_point due);
    /// Sends the request and registers the connection with the epoll instance.
    void request();
    /// Reads what has arrived. Returns true when the exchange is over, even if it failed.
    [[nodiscard]] bool advance();

    [[nodiscard]] bool isUnderWay() const { return socket_ >= 0; }
    [[nodiscard]] bool isWhole() const { return ended_ && expected_ == total_; }
    [[nodiscard]] int status() const { return status_; }
    [[nodiscard]] std::size_t received() const { return total_; }
    [[nodiscard]] std::chrono::steady_clock::time_point due() const { return due_; }
    /// When the first byte of the body arrived.
    [[nodiscard]] std::chrono::steady_clock::time_point firstByte() const { return firstByte_; }

private:
    bool send();
    void readHead();
    bool finish(bool atEnd);

    int poll_;
    std::size_t index_;
    std::uint16_t port_;
    std::string request_;
    std::chrono::steady_clock::time_point due_;
    std::chrono::steady_clock::time_point firstByte_;

    int socket_ = -1;
    bool sent_ = false;
    bool ended_ = false;
    int status_ = 0;
    std::string head_;
    std::size_t bodyBegin_ = 0;
    std::size_t total_ = 0;
    std::size_t expected_ = SIZE_MAX;
};

} // namespace brevane::bench
