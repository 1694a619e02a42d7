// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// A datagram socket (unix(7)) with which programs of one user ring for each other; rings of other
/// users are dropped. Only `waitForRing` blocks. A name is the path of a file, or one in Linux's
/// abstract namespace if it does not begin with a slash.
class DoorbellSocket {
public:
    /// Under a name that the kernel picks, to ring from and be answered at.
    DoorbellSocket();
    /// Under `name`. Where it is taken, nobody can ring here and `descriptor` is -1.
    explicit DoorbellSocket(std::string_view name);
    ~DoorbellSocket();
    DoorbellSocket(const DoorbellSocket&) = delete;
    DoorbellSocket& operator=(const DoorbellSocket&) = delete;

    struct Ring {
        std::string caller; ///< the name to answer at
        std::string message;
    };
    static constexpr std::size_t longestMessage = 1024; ///< in bytes; the rest is dropped

    /// Queues the message at the socket with that name. Returns false if nobody has that name or
    /// its queue is full.
    bool ring(std::string_view name, std::string_view message = {});

    /// Takes the oldest ring from the queue. Returns nothing if the queue is empty.
    [[nodiscard]] std::optional<Ring> nextRing();

    /// Waits until somebody has rung, takes that ring away and says whether there was one.
    [[nodiscard]] bool waitForRing(std::chrono::milliseconds timeout);

    /// For waiting in an event loop.
    [[nodiscard]] int descriptor() const { return socket_; }

private:
    int socket_ = -1;
};

} // namespace brevane
