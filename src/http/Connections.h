// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"
#include "Mutex.h"

#include <cstddef>
#include <list>
#include <memory>

namespace brevane {

class Connection;

/// Keeps the connections that wait for something, and closes some where all of them together would
/// take what others need: of the descriptors some are left to the rest of the program, and heads
/// that have no end yet are bounded.
class Connections {
public:
    /// Whether a connection is kept. Belongs to the connection and is for Connections alone.
    class Place {
        friend class Connections;
        struct Kept {
            std::shared_ptr<Connection> connection;
            std::size_t headBytes = 0;
        };
        enum class State { unknown, kept, closed };
        State state_ = State::unknown;
        std::list<Kept>::iterator kept_;
    };

    Connections() = default;
    Connections(const Connections&) = delete;
    Connections& operator=(const Connections&) = delete;

    /// Keeps the connection alive as the one that has got on last; `headBytes` are those of its
    /// unfinished head. False where it was closed meanwhile, or is now, and must end. Any thread.
    [[nodiscard]] bool keep(const std::shared_ptr<Connection>& connection,
                            std::size_t headBytes = 0);
    /// Lets a connection go. Any thread.
    void close(Connection& connection);
    /// Lets all go, and keeps none any more. Any thread.
    void closeAll();

    /// Moves the descriptor out of those that are left to the rest of the program, by closing the
    /// connections that have not got on for the longest time. False where there are none. Any
    /// thread.
    [[nodiscard]] bool makeRoomFor(Descriptor& descriptor);

private:
    using List = std::list<Place::Kept>;

    // The rest of a list of one, dropped without the mutex: a connection's end takes others.
    [[nodiscard]] List take(List::iterator kept) REQUIRES(mutex_);
    [[nodiscard]] bool closeStalest();

    Mutex mutex_;
    List kept_ GUARDED_BY(mutex_); // the one that has got on last is last
    std::size_t headBytes_ GUARDED_BY(mutex_) = 0;
    bool ended_ GUARDED_BY(mutex_) = false;
};

} // namespace brevane
