// SPDX-License-Identifier: MIT
#include "Connections.h"

#include "Connection.h"

#include <fcntl.h>
#include <sys/resource.h>

#include <algorithm>

namespace brevane {

namespace {

constexpr std::size_t headBytesLimit = 256 * 1024 * 1024;

constexpr rlim_t reserved = 128;
// Below this limit none are reserved, and descriptors simply run out.
constexpr rlim_t smallestLimit = 64;

// The lowest descriptor reserved for the rest of the program. The system allocates the lowest free
// number, so a lower one means that enough are left.
int firstReserved() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur < smallestLimit ||
        limit.rlim_cur > INT_MAX)
        return INT_MAX;
    const rlim_t kept = limit.rlim_cur < 4 * reserved ? limit.rlim_cur / 4 : reserved;
    return static_cast<int>(limit.rlim_cur - kept);
}

} // namespace

bool Connections::keep(const std::shared_ptr<Connection>& connection, std::size_t headBytes) {
    Place& place = connection->place();
    List closed;
    const MutexLock lock(mutex_);
    if (ended_ || place.state_ == Place::State::closed) return false;
    if (place.state_ == Place::State::unknown) {
        place.kept_ = kept_.insert(kept_.end(), {connection, 0});
        place.state_ = Place::State::kept;
    } else {
        kept_.splice(kept_.end(), kept_, place.kept_);
    }
    headBytes_ += headBytes - place.kept_->headBytes;
    place.kept_->headBytes = headBytes;
    while (headBytes_ > headBytesLimit)
        closed.splice(closed.end(),
                      take(std::ranges::max_element(kept_, {}, &Place::Kept::headBytes)));
    return place.state_ == Place::State::kept;
}

void Connections::close(Connection& connection) {
    List closed;
    const MutexLock lock(mutex_);
    Place& place = connection.place();
    if (place.state_ == Place::State::kept) closed = take(place.kept_);
    place.state_ = Place::State::closed;
}

void Connections::closeAll() {
    List closed;
    const MutexLock lock(mutex_);
    ended_ = true;
    while (!kept_.empty())
        closed.splice(closed.end(), take(kept_.begin()));
}

Connections::List Connections::take(List::iterator kept) {
    headBytes_ -= kept->headBytes;
    kept->connection->place().state_ = Place::State::closed;
    List taken;
    taken.splice(taken.end(), kept_, kept);
    return taken;
}

bool Connections::closeStalest() {
    List closed;
    const MutexLock lock(mutex_);
    // A connection with a second owner is running a step: it is not stale, and would not close at
    // once.
    const auto stalest = std::ranges::find_if(
        kept_, [](const Place::Kept& one) { return one.connection.use_count() == 1; });
    if (stalest == kept_.end()) return false;
    closed = take(stalest);
    return true;
}

bool Connections::makeRoomFor(Descriptor& descriptor) {
    if (descriptor.get() < static_cast<int>(smallestLimit - smallestLimit / 4)) return true;
    const int first = firstReserved();
    while (descriptor.get() >= first) {
        if (!closeStalest()) return false;
        Descriptor lower(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, 0));
        if (lower.isOpen()) descriptor = std::move(lower);
    }
    return true;
}

} // namespace brevane
