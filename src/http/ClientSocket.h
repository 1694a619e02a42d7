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

    /// What can be known of a client without sending it anything.
    enum class Client {
        there,
        ended, ///< it sends nothing more, and may have gone or not
        gone   ///< the connection is broken
    };

    explicit ClientSocket(Descriptor accepted);
    ~ClientSocket();
    ClientSocket(const ClientSocket&) = delete;
    ClientSocket& operator=(const ClientSocket&) = delete;

    /// Receives what is there, 0 bytes at the end.
    [[nodiscard]] Count receive(std::span<char> buffer);
    /// Whether bytes have arrived that were not received.
    [[nodiscard]] bool hasUnread() const;
    [[nodiscard]] Client client() const;

    /// Sends as much as fits. What is sent may be held back until more follows, or the end.
    [[nodiscard]] Count send(std::string_view first, std::string_view second = {});
    /// Sends as much as fits of these bytes of a file, 0 where the file ends before them.
    [[nodiscard]] Count send(const LargeFile& file, std::size_t offset, std::size_t length);
    /// Lets the kernel keep no more than a little of what the client is not ready for. It would
    /// take megabytes, of a memory that all connections of the machine share.
    void limitUnsent();
    /// Holds back an end of a file that fills no segment until the end of sending, to leave with
    /// it.
    void holdEnd();
    /// Tells the client that nothing follows.
    void endSending();
    /// Makes closing tell the client that the response is broken.
    void breakOnClose();

    /// Calls `next` on the executor once there is something to receive; never where the connection
    /// is dropped before. False where that cannot be waited for.
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
    std::optional<Watched> watched_; // the same socket, known to an event loop
};

} // namespace brevane
