// SPDX-License-Identifier: MIT
#pragma once

#include "ClientSocket.h"
#include "Connections.h"
#include "Loaders.h"
#include "Response.h"
#include "ServedFolder.h"

#include <boost/asio/basic_waitable_timer.hpp>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// One request and its one response, one step at a time. Between steps it is owned by Connections;
/// it closes with its last reference.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    Connection(Descriptor accepted, std::shared_ptr<const ServedFolder> folder);

    /// Reads what has arrived and processes it.
    void receive();

    [[nodiscard]] Connections::Place& place() { return place_; }

private:
    using Step = void (Connection::*)();
    using Clock = std::chrono::steady_clock;
    using Timer =
        boost::asio::basic_waitable_timer<Clock, boost::asio::wait_traits<Clock>, Executor>;

    // On a handler. If the folder is slow, on a loader from `lookLate` on. What the client takes at
    // once is sent here, too, to its end.
    void take(std::string_view bytes);
    void answer();
    void lookLate();
    void look();
    void begin(Response& response);
    void beginLargeFile(std::string_view head, bool headOnly);

    // On a loader.
    void load();
    void bringPiece(std::size_t piece);
    void refuseFile();
    void bringTurn();

    // On a sender; `sendTurn` on a loader if the folder is slow.
    void sendHead();
    void send();
    void nextTurn();
    void sendTurn();
    void endFile();
    void finish();
    void drain();

    // Schedule the next step, or close the connection if that fails.
    void onceReadable(Executor executor, Step step);
    void onceWritable(Executor executor, Step step);
    void onSender(Step step);
    void onLoader(Loaders::Order order, Step step);
    void close();
    // Runs `step` if this connection still exists by then, and closes it if the step throws.
    auto later(Step step) {
        return [connection = weak_from_this(), step] {
            const auto self = connection.lock();
            if (!self) return;
            try {
                (self.get()->*step)();
            } catch (...) {
                self->close();
                throw;
            }
        };
    }

    const std::shared_ptr<const ServedFolder> folder_;
    ServerThreads& threads_;
    ClientSocket socket_;
    Connections::Place place_;
    bool moreFollows_ = true;         // The client may send more than its request.
    bool headOnly_ = false;           // The file is loaded, but not sent.
    bool isTurnBrought_ = false;      // The next turn's bytes were in the cache a moment ago.
    RequestHead request_;             // until it is answered
    std::string bytes_;               // an unfinished request head, later the response
    std::size_t sent_ = 0;            // sent so far of bytes_
    std::unique_ptr<LargeFile> file_; // to be sent after bytes_
    std::size_t fileDone_ = 0;        // bytes of the file loaded, later sent
    std::size_t dropped_ = 0;
    std::optional<Timer> drainTimer_;
};

} // namespace brevane
