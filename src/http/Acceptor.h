// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"
#include "ServedFolder.h"

#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/basic_waitable_timer.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <system_error>

namespace brevane {

/// Accepts the connections of one server; the thread that accepts one serves it.
class Acceptor : public std::enable_shared_from_this<Acceptor> {
public:
    /// `isRunning` is cleared when the socket closes, and not touched afterwards.
    Acceptor(const std::shared_ptr<const ServedFolder>& folder, std::atomic<bool>& isRunning);

    /// Listens on every local address, on IPv4 alone where there is no IPv6. Port 0 takes a free
    /// one.
    [[nodiscard]] std::error_code listen(std::uint16_t port);
    /// The port listened on.
    [[nodiscard]] std::uint16_t port() const;

    /// Begins to accept.
    void start();
    /// Closes the socket; nothing is accepted after that. Any thread.
    void stop();

private:
    using Socket = boost::asio::basic_socket_acceptor<boost::asio::ip::tcp, Executor>;
    using Clock = std::chrono::steady_clock;
    using Timer =
        boost::asio::basic_waitable_timer<Clock, boost::asio::wait_traits<Clock>, Executor>;

    [[nodiscard]] boost::system::error_code listenOn(const boost::asio::ip::tcp::endpoint& address);
    void accept();
    // The next connection; none, and the next turn prepared, where there is none. The last one of
    // a turn prepares the next as well.
    Descriptor takeConnection(bool isLast);
    // The rest with the mutex held.
    void wait();
    void pause();
    void close();

    ServerThreads& threads;
    std::weak_ptr<const ServedFolder> folder;
    std::atomic<bool>& running;
    std::mutex mutex; // of what follows
    Socket socket;
    Timer pauseTimer;
};

} // namespace brevane
