// SPDX-License-Identifier: MIT
#include "Acceptor.h"

#include "Connection.h"
#ifdef __APPLE__
#include "LoopbackPort.h"
#endif
#include "SystemError.h"
#include "TcpListener.h"

#include <fcntl.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>

namespace brevane {

namespace {

using boost::asio::ip::tcp;

constexpr int backlog = 4096; // The system caps it.
constexpr auto pauseTime = std::chrono::milliseconds(50);
// Connections that a thread accepts before it returns to the event loop.
constexpr int turnLimit = 64;

// Non-blocking sockets that no child process inherits. On failure, a closed Descriptor and errno.
#ifdef __linux__
Descriptor openSocket(int family) {
    return Descriptor(::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

Descriptor acceptFrom(int listening) {
    return Descriptor(::accept4(listening, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}
#else
// Children inherit none of these in any case: they are spawned with POSIX_SPAWN_CLOEXEC_DEFAULT.
Descriptor prepared(Descriptor socket) {
    if (!socket.isOpen()) return socket;
    const int on = 1;
    ::fcntl(socket.get(), F_SETFD, FD_CLOEXEC);
    ::fcntl(socket.get(), F_SETFL, O_NONBLOCK);
    ::setsockopt(socket.get(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
    return socket;
}

Descriptor openSocket(int family) {
    return prepared(Descriptor(::socket(family, SOCK_STREAM, 0)));
}

Descriptor acceptFrom(int listening) {
    return prepared(Descriptor(::accept(listening, nullptr, nullptr)));
}
#endif

void setOption(const Descriptor& socket, int level, int name, int value) {
    ::setsockopt(socket.get(), level, name, &value, sizeof value);
}

enum class Trouble { none, passing, shortage, fatal };

// Classifies the errors of accept(2) by what to do about them.
Trouble troubleOf(int error) {
    switch (error) {
    case EAGAIN: // Another thread was faster, or the client has gone.
    case ECONNABORTED:
    case EINTR:
        return Trouble::passing;
    case EBADF:
    case EINVAL:
    case ENOTSOCK:
    case EOPNOTSUPP:
        return Trouble::fatal;
    default:
        return Trouble::shortage; // of descriptors or memory, or a network error
    }
}

} // namespace

Acceptor::Acceptor(std::shared_ptr<const ServedFolder> folder, std::atomic<bool>& isRunning)
    : folder_(std::move(folder)), threads_(folder_->threads), running_(isRunning),
      socket_(threads_.handlers()), pauseTimer_(threads_.handlers()) {}

std::error_code Acceptor::listen(std::uint16_t port) {
#ifdef __APPLE__
    const auto free = loopbackPort(port);
    if (!free) return free.error();
    port = *free;
#endif
    const MutexLock lock(mutex_);
    std::error_code error = listenOn({tcp::v6(), port});
    if (error == std::errc::address_family_not_supported ||
        error == std::errc::address_not_available)
        error = listenOn({tcp::v4(), port});
    return error;
}

std::error_code Acceptor::listenOn(const tcp::endpoint& address) {
    Descriptor opened = openSocket(address.protocol().family());
    if (!opened.isOpen()) return lastSystemError();
    if (address.protocol() == tcp::v6()) setOption(opened, IPPROTO_IPV6, IPV6_V6ONLY, 0);
    setOption(opened, SOL_SOCKET, SO_REUSEADDR, 1);
#ifdef __linux__
    // accept(2) returns a connection only once its request has arrived, or after 5 seconds.
    setOption(opened, IPPROTO_TCP, TCP_DEFER_ACCEPT, 5);
#endif
    if (::bind(opened.get(), address.data(), static_cast<socklen_t>(address.size())) != 0 ||
        ::listen(opened.get(), backlog) != 0)
        return lastSystemError();
    boost::system::error_code error;
    socket_.assign(address.protocol(), opened.get(), error);
    if (!error) std::ignore = opened.release();
    return error;
}

std::uint16_t Acceptor::port() {
    const MutexLock lock(mutex_);
    boost::system::error_code unknown;
    return socket_.local_endpoint(unknown).port();
}

void Acceptor::start() {
    const MutexLock lock(mutex_);
    wait();
}

void Acceptor::stop() {
    const MutexLock lock(mutex_);
    close();
}

void Acceptor::wait() {
    socket_.async_wait(Socket::wait_read,
                       [self = shared_from_this()](boost::system::error_code error) {
                           if (!error) self->accept();
                       });
}

void Acceptor::accept() {
    // One at a time: another thread may accept the next, even while this one is blocked in the file
    // system.
    for (int taken = 0; taken < turnLimit; ++taken) {
        Descriptor accepted = taken == 0 ? takeFirst() : takeNext();
        if (!accepted.isOpen()) return;
        std::make_shared<Connection>(std::move(accepted), folder_)->receive();
    }
}

Descriptor Acceptor::takeFirst() {
    const MutexLock lock(mutex_);
    if (!socket_.is_open()) return {};
    if (full_ && !hasRoom()) {
        pause();
        return {};
    }
    Descriptor accepted = acceptFrom(socket_.native_handle());
    const Trouble trouble = accepted.isOpen() ? Trouble::none : troubleOf(errno);
    full_ = trouble == Trouble::none && !threads_.connections().makeRoomFor(accepted);
    if (trouble == Trouble::fatal)
        close();
    else if (trouble == Trouble::shortage)
        pause();
    else
        wait();
    return accepted;
}

Descriptor Acceptor::takeNext() {
    const MutexLock lock(mutex_);
    // Errors are left to the next turn, which takeFirst() has already scheduled.
    if (!socket_.is_open() || full_) return {};
    Descriptor accepted = acceptFrom(socket_.native_handle());
    full_ = accepted.isOpen() && !threads_.connections().makeRoomFor(accepted);
    return accepted;
}

bool Acceptor::hasRoom() {
    Descriptor next(::fcntl(socket_.native_handle(), F_DUPFD_CLOEXEC, 0));
    return next.isOpen() && threads_.connections().makeRoomFor(next);
}

void Acceptor::pause() {
    // The connection stays acceptable, so waiting for readability would spin.
    pauseTimer_.expires_after(pauseTime);
    pauseTimer_.async_wait([self = shared_from_this()](boost::system::error_code error) {
        if (!error) self->accept();
    });
}

void Acceptor::close() {
    if (!socket_.is_open()) return;
    boost::system::error_code ignored;
    pauseTimer_.cancel();
    socket_.close(ignored);
    running_ = false;
}

TcpListener::TcpListener(std::shared_ptr<Acceptor> acceptor) : acceptor_(std::move(acceptor)) {}

TcpListener::~TcpListener() {
    acceptor_->stop();
}

void TcpListener::cancel() {
    acceptor_->stop();
}

} // namespace brevane
