// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"
#include "ServerThreads.h"

#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <cstddef>
#include <expected>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

namespace brevane {

/// A connection that was accepted, on plain calls that never wait. The event loop learns of it only
/// when there is something to wait for, which most requests never do. Dropping it closes it.
class ClientSocket {
public:
    /// Why a call did nothing.
    enum class Pause {
        notReady, ///< it would have had to wait
        failed    ///< the connection is broken
    };
    using Count = std::expected<std::size_t, Pause>;

    ClientSocket(Descriptor accepted, Executor handlers);
    ~ClientSocket();
    ClientSocket(const ClientSocket&) = delete;
    ClientSocket& operator=(const ClientSocket&) = delete;

    /// Receives what is there, 0 bytes at the end.
    [[nodiscard]] Count receive(std::span<char> buffer);
    /// Whether bytes have arrived that were not received.
    [[nodiscard]] bool hasUnread() const;
    /// Sends as much as fits. What is sent may be held back until more follows, or the end.
    [[nodiscard]] Count send(std::string_view first, std::string_view second);
    /// Lets the kernel keep no more than a little of what the client is not ready for. It would
    /// take megabytes, of a memory that all connections of the machine share.
    void limitUnsent();
    /// Tells the client that nothing follows.
    void endSending();
    /// Ends both directions, so that a wait ends. Any thread.
    void abort();

    /// Calls `next` once there is something to receive. A connection that fails drops it uncalled.
    template <class Next>
    void whenReadable(Next next) {
        wait(Watched::wait_read, std::move(next));
    }
    /// Calls `next` once there is room to send.
    template <class Next>
    void whenWritable(Next next) {
        wait(Watched::wait_write, std::move(next));
    }

private:
    using Watched = boost::asio::basic_stream_socket<boost::asio::ip::tcp, Executor>;

    template <class Next>
    void wait(Watched::wait_type event, Next next) {
        if (!watch()) return;
        watched->async_wait(event, [next = std::move(next)](boost::system::error_code error) {
            if (!error) next();
        });
    }
    bool watch();

    Descriptor socket;
    Executor executor;
    std::optional<Watched> watched; // the same socket, known to the event loop
};

} // namespace brevane
