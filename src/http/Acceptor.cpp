// SPDX-License-Identifier: MIT
#include "Acceptor.h"

#include "Connection.h"

#include <boost/asio/ip/v6_only.hpp>

#include <fcntl.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace brevane {

namespace {

using boost::asio::ip::tcp;

constexpr int backlog = 4096; // The system lowers it to its own limit.
// What waits is accepted at once, else each of many downloads has its turn before the next request;
// but not without an end, or downloads have none.
constexpr int acceptsPerTurn = 64;
constexpr auto pauseTime = std::chrono::milliseconds(50);

// The next connection, ready for calls that do not wait; none, and errno, where there is none.
Descriptor acceptFrom(int listening) {
#ifdef __linux__
    return Descriptor(::accept4(listening, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
#else
    Descriptor accepted(::accept(listening, nullptr, nullptr));
    if (accepted.isOpen()) {
        const int on = 1;
        ::fcntl(accepted.get(), F_SETFL, O_NONBLOCK);
        ::fcntl(accepted.get(), F_SETFD, FD_CLOEXEC);
        ::setsockopt(accepted.get(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
    }
    return accepted;
#endif
}

// A new socket, which no child inherits; none, and errno, where there is none to have.
Descriptor openSocket(const tcp& protocol) {
#ifdef __linux__
    return Descriptor(
        ::socket(protocol.family(), protocol.type() | SOCK_CLOEXEC, protocol.protocol()));
#else
    Descriptor opened(::socket(protocol.family(), protocol.type(), protocol.protocol()));
    if (opened.isOpen()) ::fcntl(opened.get(), F_SETFD, FD_CLOEXEC);
    return opened;
#endif
}

enum class Trouble { none, passing, shortage, fatal };

// What accept(2) may report, sorted by what helps.
Trouble troubleOf(int error) {
    switch (error) {
    case EAGAIN: // The client has gone.
    case ECONNABORTED:
    case EINTR:
        return Trouble::passing;
    case EBADF:
    case EINVAL:
    case ENOTSOCK:
    case EOPNOTSUPP:
        return Trouble::fatal;
    default:
        return Trouble::shortage; // of descriptors or memory, or the network's own
    }
}

} // namespace

Acceptor::Acceptor(const std::shared_ptr<const ServedFolder>& served, std::atomic<bool>& isRunning)
    : threads(served->threads), folder(served), running(isRunning), socket(threads.handlers()),
      pauseTimer(threads.handlers()) {}

std::error_code Acceptor::listen(std::uint16_t port) {
    boost::system::error_code error = listenOn({tcp::v6(), port});
    if (error == boost::asio::error::address_family_not_supported ||
        error == boost::system::errc::address_not_available)
        error = listenOn({tcp::v4(), port});
    return error;
}

boost::system::error_code Acceptor::listenOn(const tcp::endpoint& address) {
    try {
        socket.close();
        Descriptor opened = openSocket(address.protocol());
        if (!opened.isOpen()) return {errno, boost::system::system_category()};
        socket.assign(address.protocol(), opened.get());
        static_cast<void>(opened.release());
        if (address.protocol() == tcp::v6()) socket.set_option(boost::asio::ip::v6_only(false));
        socket.set_option(tcp::acceptor::reuse_address(true));
        socket.native_non_blocking(true);
        socket.bind(address);
#ifdef __linux__
        // A connection is only seen with its request, for which nobody has to wait then.
        constexpr int seconds = 5;
        ::setsockopt(socket.native_handle(), IPPROTO_TCP, TCP_DEFER_ACCEPT, &seconds,
                     sizeof seconds);
#endif
        socket.listen(backlog);
        return {};
    } catch (const boost::system::system_error& failure) {
        return failure.code();
    }
}

std::uint16_t Acceptor::port() const {
    boost::system::error_code unknown;
    return socket.local_endpoint(unknown).port();
}

void Acceptor::start() {
    const std::scoped_lock lock(mutex);
    wait();
}

void Acceptor::stop() {
    const std::scoped_lock lock(mutex);
    close();
}

void Acceptor::wait() {
    socket.async_wait(Socket::wait_read,
                      [self = shared_from_this()](boost::system::error_code error) {
                          if (!error) self->accept();
                      });
}

void Acceptor::accept() {
    for (int count = 0; count < acceptsPerTurn; ++count) {
        Descriptor accepted = takeConnection(count + 1 == acceptsPerTurn);
        if (!accepted.isOpen()) return;
        std::make_shared<Connection>(std::move(accepted), threads, folder)->receive();
    }
}

Descriptor Acceptor::takeConnection(bool isLast) {
    const std::scoped_lock lock(mutex);
    if (!socket.is_open()) return {};
    Descriptor accepted = acceptFrom(socket.native_handle());
    const Trouble trouble = accepted.isOpen() ? Trouble::none : troubleOf(errno);
    if (trouble == Trouble::none && !isLast) return accepted;
    if (trouble == Trouble::fatal)
        close();
    else if (trouble == Trouble::shortage)
        pause();
    else
        wait();
    return accepted;
}

void Acceptor::pause() {
    // The connection stays acceptable, so that waiting for it would spin.
    pauseTimer.expires_after(pauseTime);
    pauseTimer.async_wait([self = shared_from_this()](boost::system::error_code error) {
        if (!error) self->accept();
    });
}

void Acceptor::close() {
    if (!socket.is_open()) return;
    boost::system::error_code ignored;
    pauseTimer.cancel();
    socket.close(ignored);
    running = false;
}

} // namespace brevane
