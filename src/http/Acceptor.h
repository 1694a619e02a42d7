// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"
#include "Mutex.h"
#include "ServedFolder.h"
#include "ServerThreads.h"

#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/basic_waitable_timer.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <system_error>

namespace brevane {

/// Accepts the connections of one server; the thread that accepts a connection begins to serve it.
class Acceptor : public std::enable_shared_from_this<Acceptor> {
public:
    /// `isRunning` is set to false when the socket closes, and not accessed afterwards.
    Acceptor(std::shared_ptr<const ServedFolder> folder, std::atomic<bool>& isRunning);

    /// Listens on all local addresses, or on IPv4 only if there is no IPv6. Port 0 selects a free
    /// port.
    [[nodiscard]] std::error_code listen(std::uint16_t port);
    /// The port listened on.
    [[nodiscard]] std::uint16_t port();

    /// Starts accepting.
    void start();
    /// Closes the socket; nothing is accepted after this returns. Any thread.
    void stop();

private:
    using Socket = boost::asio::basic_socket_acceptor<boost::asio::ip::tcp, Executor>;
    using Clock = std::chrono::steady_clock;
    using Timer =
        boost::asio::basic_waitable_timer<Clock, boost::asio::wait_traits<Clock>, Executor>;

    [[nodiscard]] std::error_code listenOn(const boost::asio::ip::tcp::endpoint& address)
        REQUIRES(mutex_);
    void accept();
    // Accepts the first connection of a turn. Then another thread may accept the next.
    Descriptor takeFirst();
    Descriptor takeNext();
    // Whether one more connection leaves enough descriptors for the rest of the program.
    [[nodiscard]] bool hasRoom() REQUIRES(mutex_);
    void wait() REQUIRES(mutex_);
    void pause() REQUIRES(mutex_);
    void close() REQUIRES(mutex_);

    const std::shared_ptr<const ServedFolder> folder_;
    ServerThreads& threads_;
    std::atomic<bool>& running_;
    Mutex mutex_;
    Socket socket_ GUARDED_BY(mutex_);
    Timer pauseTimer_ GUARDED_BY(mutex_);
    bool full_ GUARDED_BY(mutex_) = false; // The last connection left too few descriptors.
};

} // namespace brevane
