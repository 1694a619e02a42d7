// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"
#include "LargeFile.h"
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

/// An accepted connection, used through non-blocking system calls. It is registered with an event
/// loop only when there is something to wait for, which most requests never need. The destructor
/// closes it.
class ClientSocket {
public:
    /// Why a call did nothing.
    enum class Pause {
        notReady, ///< it would have blocked, or was interrupted
        failed    ///< the connection is broken
    };
    using Count = std::expected<std::size_t, Pause>;

    /// What is known about a client without sending to it.
    enum class Client {
        there,
        ended, ///< it has closed its sending half, and may be gone
        gone   ///< the connection is broken
    };

    explicit ClientSocket(Descriptor accepted);
    ~ClientSocket();
    ClientSocket(const ClientSocket&) = delete;
    ClientSocket& operator=(const ClientSocket&) = delete;

    /// Receives what has arrived; 0 bytes at end of stream.
    [[nodiscard]] Count receive(std::span<char> buffer);
    /// Whether unread bytes have arrived.
    [[nodiscard]] bool hasUnread() const;
    [[nodiscard]] Client client() const;

    /// Sends as much as the send buffer takes. The kernel may hold back a partial segment until
    /// more data or the end follows.
    [[nodiscard]] Count send(std::string_view first, std::string_view second = {});
    /// Sends as much of these bytes of a file as the send buffer takes; 0 if the file ends before
    /// `offset`.
    [[nodiscard]] Count send(const LargeFile& file, std::size_t offset, std::size_t length);
    /// Limits what the kernel queues for a slow client (TCP_NOTSENT_LOWAT); otherwise it would
    /// queue megabytes, in memory that all connections of the machine share.
    void limitUnsent();
    /// Holds back a partial last segment (TCP_CORK) to send it together with the FIN. Linux only.
    void holdEnd();
    /// Shuts down the sending half.
    void endSending();
    /// Makes closing send RST, so that the client notices that the response is broken.
    void breakOnClose();

    /// Calls `next` on the executor once there is something to receive, or never if the connection
    /// is destroyed first. Returns false if that cannot be waited for.
    template <class Next>
    [[nodiscard]] bool whenReadable(Executor executor, Next next) {
        return wait(executor, Watched::wait_read, std::move(next));
    }
    /// The same once there is room to send.
    template <class Next>
    [[nodiscard]] bool whenWritable(Executor executor, Next next) {
        return wait(executor, Watched::wait_write, std::move(next));
    }

private:
    using Watched = boost::asio::basic_stream_socket<boost::asio::ip::tcp, Executor>;

    template <class Next>
    bool wait(Executor executor, Watched::wait_type event, Next next) {
        if (!watch(executor)) return false;
        watched_->async_wait(event, [next = std::move(next)](boost::system::error_code error) {
            if (error != boost::asio::error::operation_aborted) next();
        });
        return true;
    }
    bool watch(Executor executor);
    void unwatch();

    Descriptor socket_;
    std::optional<Watched> watched_; // the same socket, registered with an event loop
};

} // namespace brevane
