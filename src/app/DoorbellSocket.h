// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// A datagram socket (unix(7)) with which programs of one user signal each other; messages of other
/// users are dropped. Only `waitForRing` blocks. A name is a file's path, or is in Linux's abstract
/// namespace if it does not begin with a slash.
class DoorbellSocket {
public:
    /// Binds to an autobind address, which the reply is sent to.
    DoorbellSocket();
    /// Binds to `name`. If that fails, nobody can ring here and `descriptor` returns -1.
    explicit DoorbellSocket(std::string_view name);
    ~DoorbellSocket();
    DoorbellSocket(const DoorbellSocket&) = delete;
    DoorbellSocket& operator=(const DoorbellSocket&) = delete;

    struct Ring {
        std::string caller; ///< the name to answer at
        std::string message;
    };
    static constexpr std::size_t longestMessage = 1024; ///< in bytes; the rest is dropped

    /// Returns whether the message was queued at the socket of that name.
    bool ring(std::string_view name, std::string_view message = {});

    /// Takes the next ring and returns it; none if nobody has rung.
    [[nodiscard]] std::optional<Ring> nextRing();

    /// Waits for a ring and takes it; returns false if there was none in time.
    [[nodiscard]] bool waitForRing(std::chrono::milliseconds timeout);

    /// For waiting in an event loop.
    [[nodiscard]] int descriptor() const { return socket_; }

private:
    int socket_ = -1;
};

} // namespace brevane
