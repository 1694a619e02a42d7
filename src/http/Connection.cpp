// SPDX-License-Identifier: MIT
#include "Connection.h"

#include "ServerThreads.h"
#include "ThreadBuffers.h"

#include <boost/asio/post.hpp>

#include <algorithm>
#include <bit>
#include <utility>

namespace brevane {

namespace {

// A large file is sent in turns, so that it never delays other connections for long.
constexpr std::size_t turnSize = 256 * 1024;
// Bytes of a large file that a loader reads before other tasks have their turn.
constexpr std::size_t loadSize = 16 * 1024 * 1024;
// Bytes read between two checks that the client is still there.
constexpr std::size_t bringSize = 1024 * 1024;

constexpr std::size_t drainLimit = 128 * 1024 * 1024;
constexpr auto drainTime = std::chrono::seconds(10);

// Powers of two, as is the limit on all heads: a head near the limit was last reallocated at half
// of it, so it is never in memory twice.
void reserveFor(std::string& head, std::size_t size) {
    head.reserve(std::bit_ceil(size));
}

} // namespace

Connection::Connection(Descriptor accepted, std::shared_ptr<const ServedFolder> folder)
    : folder_(std::move(folder)), threads_(folder_->threads), socket_(std::move(accepted)) {}

void Connection::receive() {
    const auto buffer = receiveBuffer();
    const auto count = socket_.receive(buffer);
    if (count == 0U || count == std::unexpected(ClientSocket::Pause::failed)) return close();
    if (count) return take({buffer.data(), *count});
    onceReadable(threads_.handlers(), &Connection::receive);
}

void Connection::take(std::string_view bytes) {
    if (!folder_->isServed) return close();

    const std::size_t searched = bytes_.size();
    if (searched > 0) {
        const std::size_t headBytes = searched + bytes.size();
        if (!threads_.connections().keep(shared_from_this(), headBytes)) return close();
        reserveFor(bytes_, headBytes);
        bytes = bytes_.append(bytes);
    }
    auto request = parseRequestHead(bytes, searched);
    if (!request) {
        if (searched == 0) {
            reserveFor(bytes_, bytes.size());
            bytes_ = bytes;
        }
        return onceReadable(threads_.handlers(), &Connection::receive);
    }
    moreFollows_ = !*request || (*request)->moreFollows;
    std::string().swap(bytes_); // An assignment would keep the capacity.
    if (*request) {
        request_ = std::move(**request);
        return answer();
    }
    Response refusal = errorResponse(request->error());
    begin(refusal);
}

void Connection::answer() {
    if (folder_->loaders->isSlow())
        onLoader(Loaders::Order::look, &Connection::lookLate);
    else
        look();
}

void Connection::lookLate() {
    if (socket_.client() == ClientSocket::Client::gone) return close();
    look();
}

void Connection::look() {
    const RequestHead request = std::move(request_);
    Response response =
        threads_.visit(*folder_->loaders, [&] { return respond(request, folder_->root); });
    begin(response);
}

void Connection::begin(Response& response) {
    file_ = response.takeFile();
    if (file_) {
        if (!threads_.connections().makeRoomFor(file_->ownDescriptor())) return refuseFile();
        if (file_->size() > smallFileSize)
            return beginLargeFile(response.head(), response.headOnly());
        isTurnBrought_ = true;
        socket_.holdEnd();
    }

    const auto count = socket_.send(response.head(), response.body());
    if (count == std::unexpected(ClientSocket::Pause::failed)) return close();
    sent_ = count.value_or(0);
    if (sent_ == response.head().size() + response.body().size())
        return file_ ? sendTurn() : finish();
    bytes_ = response.rest(sent_);
    sent_ = 0;
    onceWritable(threads_.senders(), &Connection::send);
}

void Connection::beginLargeFile(std::string_view head, bool headOnly) {
    bytes_ = head;
    headOnly_ = headOnly;
    // For a file of this size, checking the cache is faster than going through a loader.
    const bool isReady = file_->size() <= loadSize && threads_.visit(*folder_->loaders, [&] {
        return file_->isCached(0, file_->size());
    });
    if (isReady)
        onSender(&Connection::sendHead);
    else
        onLoader(Loaders::Order::load, &Connection::load);
}

void Connection::load() {
    while (fileDone_ < file_->size()) {
        if (socket_.client() == ClientSocket::Client::gone || threads_.isEnding()) return close();
        const std::size_t piece = std::min(loadSize, file_->size() - fileDone_);
        if (!file_->isCached(fileDone_, piece)) return bringPiece(piece);
        fileDone_ += piece;
    }
    onSender(&Connection::sendHead);
}

void Connection::bringPiece(std::size_t piece) {
    const std::size_t end = fileDone_ + piece;
    while (fileDone_ < end) {
        const std::size_t length = std::min(bringSize, end - fileDone_);
        if (socket_.client() == ClientSocket::Client::gone || threads_.isEnding()) return close();
        if (!file_->bring(fileDone_, length)) return refuseFile();
        fileDone_ += length;
    }
    const bool mayBeGone = socket_.client() == ClientSocket::Client::ended;
    onLoader(mayBeGone ? Loaders::Order::last : Loaders::Order::load, &Connection::load);
}

void Connection::refuseFile() {
    file_.reset();
    Response refusal = errorResponse(Status::forbidden);
    begin(refusal);
}

void Connection::sendHead() {
    fileDone_ = 0;
    if (headOnly_)
        file_.reset();
    else
        socket_.limitUnsent();
    send();
}

void Connection::send() {
    const auto count = socket_.send(std::string_view(bytes_).substr(sent_));
    if (count == std::unexpected(ClientSocket::Pause::failed)) return close();
    sent_ += count.value_or(0);
    if (sent_ < bytes_.size()) {
        moreFollows_ = true; // The client may send something meanwhile.
        return onceWritable(threads_.senders(), &Connection::send);
    }
    std::string().swap(bytes_);
    if (!file_) return finish();
    moreFollows_ = true;
    nextTurn();
}

void Connection::nextTurn() {
    // In a slow folder even checking the cache may block.
    if (folder_->loaders->isSlow())
        onLoader(Loaders::Order::look, &Connection::sendTurn);
    else
        sendTurn();
}

void Connection::sendTurn() {
    const std::size_t length = std::min(turnSize, file_->size() - fileDone_);
    bool isCached = std::exchange(isTurnBrought_, false);
    const auto count = threads_.visit(*folder_->loaders, [&]() -> ClientSocket::Count {
        isCached = isCached || file_->isCached(fileDone_, length);
        return isCached ? socket_.send(*file_, fileDone_, length) : 0;
    });
    if (!isCached) return onLoader(Loaders::Order::load, &Connection::bringTurn);
    if (count == 0U || count == std::unexpected(ClientSocket::Pause::failed))
        return close(); // The file was truncated, or the client has gone.

    fileDone_ += count.value_or(0);
    // A file sent by a single call cannot have been truncated halfway.
    if (fileDone_ == file_->size()) return count == fileDone_ ? finish() : endFile();
    moreFollows_ = true;
    if (count == length)
        onSender(&Connection::nextTurn);
    else
        onceWritable(threads_.senders(), &Connection::nextTurn);
}

void Connection::bringTurn() {
    const std::size_t length = std::min(turnSize, file_->size() - fileDone_);
    if (socket_.client() == ClientSocket::Client::gone || !file_->bring(fileDone_, length))
        return close();
    isTurnBrought_ = true;
    onSender(&Connection::nextTurn);
}

void Connection::endFile() {
    if (file_->isCutShort()) {
        // Bytes zeroed by the truncation may already be queued.
        socket_.breakOnClose();
        return close();
    }
    file_.reset();
    finish();
}

void Connection::finish() {
    // Closing with bytes unread or on their way sends RST, which makes most clients lose the
    // response. So they are read first, within limits.
    if (!moreFollows_ && !socket_.hasUnread()) return close();
    socket_.endSending();
    drainTimer_.emplace(threads_.senders(), drainTime);
    drainTimer_->async_wait([connection = weak_from_this()](boost::system::error_code) {
        if (const auto self = connection.lock()) self->close();
    });
    drain();
}

void Connection::drain() {
    const auto buffer = receiveBuffer();
    const auto count = socket_.receive(buffer);
    if (count == 0U || count == std::unexpected(ClientSocket::Pause::failed)) return close();
    dropped_ += count.value_or(0);
    if (dropped_ >= drainLimit || Clock::now() >= drainTimer_->expiry()) return close();
    onceReadable(threads_.senders(), &Connection::drain);
}

void Connection::onceReadable(Executor executor, Step step) {
    if (!threads_.connections().keep(shared_from_this(), bytes_.size()) ||
        !socket_.whenReadable(executor, later(step)))
        close();
}

void Connection::onceWritable(Executor executor, Step step) {
    if (!threads_.connections().keep(shared_from_this()) ||
        !socket_.whenWritable(executor, later(step)))
        close();
}

void Connection::onSender(Step step) {
    if (!threads_.connections().keep(shared_from_this())) return close();
    boost::asio::post(threads_.senders(), later(step));
}

void Connection::onLoader(Loaders::Order order, Step step) {
    if (!threads_.connections().keep(shared_from_this())) return close();
    folder_->loaders->post(order, later(step));
}

void Connection::close() {
    threads_.connections().close(*this);
}

} // namespace brevane
