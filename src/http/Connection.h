// SPDX-License-Identifier: MIT
#pragma once

#include "ClientSocket.h"
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

/// One request and its one response. A connection keeps itself alive while it waits for something,
/// one thing at a time, and closes when nothing refers to it any more.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    Connection(Descriptor accepted, ServerThreads& threads,
               std::weak_ptr<const ServedFolder> folder);

    /// Reads what has arrived, and goes on from there.
    void receive();

private:
    void take(std::string_view bytes);
    void load();
    void send();
    void finish();
    void releaseResponse();
    void drain();

    using Clock = std::chrono::steady_clock;
    using Timer =
        boost::asio::basic_waitable_timer<Clock, boost::asio::wait_traits<Clock>, Executor>;

    ServerThreads& threads;
    std::weak_ptr<const ServedFolder> folder;
    ClientSocket socket;
    std::string received; // while the head is incomplete
    bool moreFollows = true;
    Response response;
    std::size_t sent = 0;
    std::size_t dropped = 0;
    std::optional<Timer> drainTimer;
};

} // namespace brevane
