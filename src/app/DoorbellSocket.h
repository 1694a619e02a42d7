// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// A datagram socket (unix(7)) with which programs of one user ring for each other: messages are
/// empty, and those of other users are dropped. Never blocks but in `waitForRing`. A name is the
/// path of a file, or one in Linux's abstract namespace if it does not begin with a slash.
class DoorbellSocket {
public:
    /// Under a name that the kernel picks, to ring from and be answered at.
    DoorbellSocket();
    /// Under `name`. Where it is taken, nobody can ring here and `descriptor` is -1.
    explicit DoorbellSocket(std::string_view name);
    ~DoorbellSocket();
    DoorbellSocket(const DoorbellSocket&) = delete;
    DoorbellSocket& operator=(const DoorbellSocket&) = delete;

    /// Whether the message lies in the queue of the socket with that name now.
    bool ring(std::string_view name);

    /// The name of the next one that has rung; none if nobody has.
    [[nodiscard]] std::optional<std::string> nextRing();

    /// Waits until somebody has rung, takes that ring away and says whether there was one.
    [[nodiscard]] bool waitForRing(std::chrono::milliseconds timeout);

    /// For waiting in an event loop.
    [[nodiscard]] int descriptor() const { return socket_; }

private:
    int socket_ = -1;
};

} // namespace brevane
