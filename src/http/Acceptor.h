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

/// Accepts the connections of one server; the thread that accepts one serves it.
class Acceptor : public std::enable_shared_from_this<Acceptor> {
public:
    /// `isRunning` is cleared when the socket closes, and not touched afterwards.
    Acceptor(std::shared_ptr<const ServedFolder> folder, std::atomic<bool>& isRunning);

    /// Listens on every local address, on IPv4 alone where there is no IPv6. Port 0 takes a free
    /// one.
    [[nodiscard]] std::error_code listen(std::uint16_t port);
    /// The port listened on.
    [[nodiscard]] std::uint16_t port();

    /// Begins to accept.
    void start();
    /// Closes the socket; nothing is accepted after that. Any thread.
    void stop();

private:
    using Socket = boost::asio::basic_socket_acceptor<boost::asio::ip::tcp, Executor>;
    using Clock = std::chrono::steady_clock;
    using Timer =
        boost::asio::basic_waitable_timer<Clock, boost::asio::wait_traits<Clock>, Executor>;

    [[nodiscard]] std::error_code listenOn(const boost::asio::ip::tcp::endpoint& address)
        REQUIRES(mutex_);
    void accept();
    // The first connection of a turn. Another thread can take the next from then on.
    Descriptor takeFirst();
    Descriptor takeNext();
    // Whether a connection more leaves enough descriptors to the rest of the program.
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
    bool full_ GUARDED_BY(mutex_) = false; // The last one left too few descriptors.
};

} // namespace brevane
