// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// A datagram socket in Linux's abstract namespace (unix(7)) for short messages between programs of
/// one user; what other users send is dropped. Never blocks but in `waitForMessage`.
class DoorbellSocket {
public:
    struct Message {
        std::string text;   ///< at most 4096 bytes; the rest is cut off
        std::string sender; ///< name of the sender's socket
    };

    /// Under a name that the kernel picks, to send from and be answered at.
    DoorbellSocket();
    /// Under `name`. Where it is taken, nothing can be received and `descriptor` is -1.
    explicit DoorbellSocket(std::string_view name);
    ~DoorbellSocket();
    DoorbellSocket(const DoorbellSocket&) = delete;
    DoorbellSocket& operator=(const DoorbellSocket&) = delete;

    /// Whether the message lies in the other socket's queue now.
    bool send(std::string_view name, std::string_view text);

    /// The next message, none if there is none yet.
    [[nodiscard]] std::optional<Message> receive();

    /// Waits until something has arrived and says whether `receive` gave a message.
    [[nodiscard]] bool waitForMessage(std::chrono::milliseconds timeout);

    /// For waiting in an event loop.
    [[nodiscard]] int descriptor() const { return socket; }

private:
    int socket = -1;
};

} // namespace brevane
