// SPDX-License-Identifier: MIT
#include "Connection.h"

#include "Responder.h"
#include "ThreadBuffers.h"

#include <utility>
#include <variant>

namespace brevane {

namespace {

// A large file goes out in turns, so that it never holds up other connections for long.
constexpr std::size_t turnSize = 1024 * 1024;

constexpr std::size_t drainLimit = 128 * 1024 * 1024;
constexpr auto drainTime = std::chrono::seconds(10);

} // namespace

Connection::Connection(Descriptor accepted, ServerThreads& serverThreads,
                       std::weak_ptr<const ServedFolder> servedFolder)
    : threads(serverThreads), folder(std::move(servedFolder)),
      socket(std::move(accepted), serverThreads.handlers()) {}

void Connection::receive() {
    const auto buffer = receiveBuffer();
    const auto count = socket.receive(buffer);
    if (count == 0U || count == std::unexpected(ClientSocket::Pause::failed)) return;
    if (count) return take({buffer.data(), *count});
    socket.whenReadable([self = shared_from_this()] { self->receive(); });
}

void Connection::take(std::string_view bytes) {
    const auto site = folder.lock();
    if (!site) return;

    const std::size_t searched = received.size();
    if (searched > 0) bytes = received.append(bytes);
    const auto request = parseRequestHead(bytes, searched);
    if (!request) {
        if (searched == 0) received = bytes;
        return socket.whenReadable([self = shared_from_this()] { self->receive(); });
    }

    moreFollows = !*request || (*request)->moreFollows;
    response = *request ? respond(**request, site->root) : errorResponse(request->error());
    std::string().swap(received);
    if (response.fileToLoad() != nullptr)
        load();
    else
        send();
}

void Connection::load() {
    socket.limitUnsent();
    threads.load([self = shared_from_this()]() mutable {
        if (!self->response.fileToLoad()->load(self->threads.isEnding()))
            self->response = errorResponse(403);
        const Executor handlers = self->threads.handlers();
        boost::asio::post(handlers, [self = std::move(self)] { self->send(); });
    });
}

void Connection::send() {
    const std::string_view head = response.head;
    const std::string_view body = response.bodyBytes();
    const std::size_t headSent = std::min(sent, head.size());
    const auto count = socket.send(head.substr(headSent), body.substr(sent - headSent, turnSize));
    if (count == std::unexpected(ClientSocket::Pause::failed)) return releaseResponse();

    sent += count.value_or(0);
    if (sent == head.size() + body.size()) return finish();
    moreFollows = true; // The client has time enough to send something.
    response.keep();
    socket.whenWritable([self = shared_from_this()] { self->send(); });
}

void Connection::finish() {
    releaseResponse();
    // Closing with bytes unread or on their way resets the connection, and most clients would lose
    // the response: they are read first, within limits.
    if (!moreFollows && !socket.hasUnread()) return;
    socket.endSending();
    drainTimer.emplace(threads.handlers(), drainTime);
    drainTimer->async_wait([connection = weak_from_this()](boost::system::error_code) {
        if (const auto self = connection.lock()) self->socket.abort();
    });
    drain();
}

void Connection::releaseResponse() {
    // To unmap a large file takes milliseconds, in which small ones would wait.
    if (std::holds_alternative<LargeFile>(response.body))
        threads.load([released = std::move(response)] {});
    response = {};
}

void Connection::drain() {
    const auto buffer = receiveBuffer();
    const auto count = socket.receive(buffer);
    if (count == 0U || count == std::unexpected(ClientSocket::Pause::failed)) return;
    dropped += count.value_or(0);
    if (dropped >= drainLimit || Clock::now() >= drainTimer->expiry()) return;
    socket.whenReadable([self = shared_from_this()] { self->drain(); });
}

} // namespace brevane
