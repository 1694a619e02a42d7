// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"
#include "Mutex.h"

#include <cstddef>
#include <list>
#include <memory>

namespace brevane {

class Connection;

/// Owns the connections that wait for something, and closes some when together they would use too
/// much: some descriptors are reserved for the rest of the program, and the memory for unfinished
/// request heads is limited.
class Connections {
public:
    /// A connection's state in Connections, stored in the connection and accessed by Connections
    /// only.
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

    /// Keeps the connection alive and marks it as the most recently active; `headBytes` is the size
    /// of its unfinished head. Returns false if the connection has been closed, maybe by this call,
    /// and must end. Any thread.
    [[nodiscard]] bool keep(const std::shared_ptr<Connection>& connection,
                            std::size_t headBytes = 0);
    /// Releases a connection. Any thread.
    void close(Connection& connection);
    /// Releases all connections; keep() fails from then on. Any thread.
    void closeAll();

    /// Moves the descriptor below the reserved numbers by closing the connections that have been
    /// inactive for longest. Returns false if there are none. Any thread.
    [[nodiscard]] bool makeRoomFor(Descriptor& descriptor);

private:
    using List = std::list<Place::Kept>;

    // Removes a connection and returns it in a list, to be destroyed without the mutex: a
    // connection's destructor takes other locks.
    [[nodiscard]] List take(List::iterator kept) REQUIRES(mutex_);
    [[nodiscard]] bool closeStalest();

    Mutex mutex_;
    List kept_ GUARDED_BY(mutex_); // least recently active first
    std::size_t headBytes_ GUARDED_BY(mutex_) = 0;
    bool ended_ GUARDED_BY(mutex_) = false;
};

} // namespace brevane
