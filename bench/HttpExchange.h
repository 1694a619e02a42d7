// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace brevane::bench {

/// One request on a connection of its own, over and over; registered with an epoll instance while
/// it is under way.
class HttpExchange {
public:
    HttpExchange(int poll, std::size_t index, std::uint16_t port, const std::string& path);

    /// Connects and sends. `due` is the time that the latency counts from.
    void begin(std::chrono::steady_clock::time_point due);
    /// Takes what has arrived. True when the exchange is over, well or not.
    [[nodiscard]] bool advance();

    [[nodiscard]] bool isWhole() const { return ended && expected == total; }
    [[nodiscard]] int status() const { return code; }
    [[nodiscard]] std::size_t received() const { return total; }
    [[nodiscard]] std::chrono::steady_clock::time_point due() const { return dueTime; }

private:
    bool send();
    void readHead();
    bool finish(bool atEnd);

    int poll;
    std::size_t index;
    std::uint16_t port;
    std::string request;
    std::chrono::steady_clock::time_point dueTime;

    int socket = -1;
    bool sent = false;
    bool ended = false;
    int code = 0;
    std::string head;
    std::size_t total = 0;
    std::size_t expected = SIZE_MAX;
};

} // namespace brevane::bench
