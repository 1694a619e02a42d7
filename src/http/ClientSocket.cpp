// SPDX-License-Identifier: MIT
#include "ClientSocket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>

namespace brevane {

namespace {

#ifdef MSG_MORE
// Data and the end that follows it then leave together.
constexpr int sendFlags = MSG_NOSIGNAL | MSG_MORE;
#else
constexpr int sendFlags = 0; // SO_NOSIGPIPE is set on the socket.
#endif

ClientSocket::Count countOf(ssize_t result) {
    if (result >= 0) return static_cast<std::size_t>(result);
    const bool wouldWait = errno == EAGAIN || errno == EWOULDBLOCK;
    return std::unexpected(wouldWait ? ClientSocket::Pause::notReady : ClientSocket::Pause::failed);
}

iovec vectorOf(std::string_view bytes) {
    return {const_cast<char*>(bytes.data()), bytes.size()}; // sendmsg does not write to it.
}

} // namespace

ClientSocket::ClientSocket(Descriptor accepted, Executor handlers)
    : socket(std::move(accepted)), executor(handlers) {}

ClientSocket::~ClientSocket() {
    boost::system::error_code ignored;
    if (watched) watched->release(ignored);
}

ClientSocket::Count ClientSocket::receive(std::span<char> buffer) {
    return countOf(::recv(socket.get(), buffer.data(), buffer.size(), 0));
}

bool ClientSocket::hasUnread() const {
    int count = 0;
    return ::ioctl(socket.get(), FIONREAD, &count) == 0 && count > 0;
}

ClientSocket::Count ClientSocket::send(std::string_view first, std::string_view second) {
    std::array<iovec, 2> vectors{vectorOf(first), vectorOf(second)};
    msghdr message{};
    message.msg_iov = vectors.data();
    message.msg_iovlen = vectors.size();
    return countOf(::sendmsg(socket.get(), &message, sendFlags));
}

void ClientSocket::limitUnsent() {
    constexpr int unsent = 256 * 1024;
    ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NOTSENT_LOWAT, &unsent, sizeof unsent);
}

void ClientSocket::endSending() {
    ::shutdown(socket.get(), SHUT_WR);
}

void ClientSocket::abort() {
    ::shutdown(socket.get(), SHUT_RDWR);
}

bool ClientSocket::watch() {
    if (watched) return true;
    watched.emplace(executor);
    boost::system::error_code error;
    // Which of the two protocols it is makes no difference to waiting.
    watched->assign(boost::asio::ip::tcp::v6(), socket.get(), error);
    if (error) watched.reset();
    return !error;
}

} // namespace brevane
