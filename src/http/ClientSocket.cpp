// SPDX-License-Identifier: MIT
#include "ClientSocket.h"

#include "ThreadBuffers.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#ifdef __linux__
#include <sys/sendfile.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>

namespace brevane {

namespace {

#ifdef MSG_MORE
// MSG_MORE makes the data leave together with the FIN that follows it.
constexpr int sendFlags = MSG_NOSIGNAL | MSG_MORE;
#else
constexpr int sendFlags = 0; // SO_NOSIGPIPE is set on the socket.
#endif

ClientSocket::Count countOf(ssize_t result) {
    if (result >= 0) return static_cast<std::size_t>(result);
    const bool wouldWait = errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
    return std::unexpected(wouldWait ? ClientSocket::Pause::notReady : ClientSocket::Pause::failed);
}

iovec vectorOf(std::string_view bytes) {
    return {const_cast<char*>(bytes.data()), bytes.size()}; // sendmsg does not modify it.
}

// sendfile(2) with the result of the Linux call; the macOS one has another signature.
ssize_t sendFile(int socket, int file, std::size_t offset, std::size_t length) {
    auto position = static_cast<off_t>(offset);
#ifdef __APPLE__
    auto count = static_cast<off_t>(length);
    const int result = ::sendfile(file, socket, position, &count, nullptr, 0);
    return result == 0 || count > 0 ? static_cast<ssize_t>(count) : -1;
#else
    return ::sendfile(socket, file, &position, length);
#endif
}

// Whether sendfile does not support the file, as with some whose content is generated on reading.
bool cannotSendFile(int error) {
    return error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

} // namespace

ClientSocket::ClientSocket(Descriptor accepted) : socket_(std::move(accepted)) {}

ClientSocket::~ClientSocket() {
    unwatch();
}

ClientSocket::Count ClientSocket::receive(std::span<char> buffer) {
    return countOf(::recv(socket_.get(), buffer.data(), buffer.size(), 0));
}

bool ClientSocket::hasUnread() const {
    int count = 0;
    return ::ioctl(socket_.get(), FIONREAD, &count) == 0 && count > 0;
}

ClientSocket::Client ClientSocket::client() const {
#ifdef __linux__
    constexpr short ended = POLLRDHUP;
#else
    constexpr short ended = 0; // Only recv detects it.
#endif
    pollfd state{.fd = socket_.get(), .events = ended, .revents = 0};
    if (::poll(&state, 1, 0) <= 0) return Client::there;
    return (state.revents & (POLLHUP | POLLERR)) != 0 ? Client::gone : Client::ended;
}

ClientSocket::Count ClientSocket::send(std::string_view first, std::string_view second) {
    std::array<iovec, 2> vectors{vectorOf(first), vectorOf(second)};
    msghdr message{};
    message.msg_iov = vectors.data();
    message.msg_iovlen = vectors.size();
    return countOf(::sendmsg(socket_.get(), &message, sendFlags));
}

ClientSocket::Count ClientSocket::send(const LargeFile& file, std::size_t offset,
                                       std::size_t length) {
    const auto sent = sendFile(socket_.get(), file.descriptor(), offset, length);
    if (sent >= 0 || !cannotSendFile(errno)) return countOf(sent);

    const auto buffer = fileBuffer();
    const auto read = ::pread(file.descriptor(), buffer.data(), std::min(buffer.size(), length),
                              static_cast<off_t>(offset));
    if (read < 0) return std::unexpected(Pause::failed);
    if (read == 0) return 0;
    return send(std::string_view(buffer.data(), static_cast<std::size_t>(read)));
}

void ClientSocket::limitUnsent() {
    constexpr int unsent = 256 * 1024;
    ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_NOTSENT_LOWAT, &unsent, sizeof unsent);
}

void ClientSocket::holdEnd() {
#ifdef __linux__
    const int on = 1;
    ::setsockopt(socket_.get(), IPPROTO_TCP, TCP_CORK, &on, sizeof on);
#endif
}

void ClientSocket::endSending() {
    ::shutdown(socket_.get(), SHUT_WR);
}

void ClientSocket::breakOnClose() {
    constexpr linger reset{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
}

bool ClientSocket::watch(Executor executor) {
    if (watched_ && watched_->get_executor() == executor) return true;
    unwatch();
    watched_.emplace(executor);
    boost::system::error_code error;
    // The protocol makes no difference to waiting.
    watched_->assign(boost::asio::ip::tcp::v6(), socket_.get(), error);
    if (error) watched_.reset();
    return !error;
}

void ClientSocket::unwatch() {
    boost::system::error_code ignored;
    if (watched_) watched_->release(ignored);
    watched_.reset();
}

} // namespace brevane
