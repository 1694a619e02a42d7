// SPDX-License-Identifier: MIT
#pragma once

#include "Connections.h"
#include "Mutex.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <vector>

namespace brevane {

class Loaders;

/// The executor of all connections. Its concrete type: hiding it behind any_io_executor costs up to
/// a fifth of a small request.
using Executor = boost::asio::io_context::executor_type;

/// The threads of a server pool: handlers, which answer requests, and senders, which send what does
/// not go out at once, so that downloads never stand in front of small requests. As many of each as
/// there are processors. They wait for nothing but a file system, and one that hangs there is
/// replaced.
class ServerThreads : public std::enable_shared_from_this<ServerThreads> {
public:
    /// Starts them. Throws std::system_error or boost::system::system_error where there is no
    /// thread or descriptor left.
    [[nodiscard]] static std::shared_ptr<ServerThreads> start();
    ServerThreads(const ServerThreads&) = delete;
    ServerThreads& operator=(const ServerThreads&) = delete;

    /// Closes all connections and ends the threads. One that hangs in a file system is not waited
    /// for: it ends when that lets it go.
    void end();
    [[nodiscard]] bool isEnding() const { return ending_; }

    [[nodiscard]] Executor handlers() { return handlers_.get_executor(); }
    [[nodiscard]] Executor senders() { return senders_.get_executor(); }
    [[nodiscard]] Connections& connections() { return connections_; }

    /// Returns what `look` does, which looks at the disk of that folder. Where it hangs there, the
    /// folder is left to its loaders from then on. Any thread.
    template <class Look>
    auto visit(const Loaders& folder, Look look) {
        const Visit visit(*this, folder);
        return look();
    }

    /// The threads of one more folder.
    [[nodiscard]] std::shared_ptr<Loaders> makeLoaders();

    /// Runs `work` on a new thread. False where there is none.
    [[nodiscard]] bool launch(std::function<void()> work);

private:
    // What a handler or a sender is about, for the watch to see.
    struct Seat {
        boost::asio::io_context& context;
        std::atomic<std::uint64_t> visits = 0; // odd during a visit
        std::atomic<const Loaders*> folder = nullptr;
        std::uint64_t visitsSeen = 0; // by the watch alone
        std::atomic<bool> replaced = false;
    };

    // One look at a disk by the calling thread.
    class Visit {
    public:
        Visit(ServerThreads& threads, const Loaders& folder);
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

    private:
        Seat* seat_;
    };

    explicit ServerThreads(unsigned count);
    void startAll(unsigned count);
    bool startThread(boost::asio::io_context& context);
    void run(Seat& seat);

    // Replaces threads that hang. Sleeps while there are no visits.
    void watch();
    void beginWatch();
    // Adds the event loops that miss a thread. Whether there were visits since the last look.
    bool lookAround(std::vector<boost::asio::io_context*>& hanging) REQUIRES(mutex_);

    static thread_local Seat* ownSeat;

    std::atomic<bool> ending_ = false;
    std::atomic<bool> watching_ = false;
    boost::asio::io_context handlers_;
    boost::asio::io_context senders_;
    boost::asio::executor_work_guard<Executor> handlerWork_;
    boost::asio::executor_work_guard<Executor> senderWork_;
    Connections connections_; // closed before the event loops go that they are known to

    Mutex mutex_;
    Condition wanted_; // a visit has begun, or the end has come
    Condition ended_;  // a thread
    std::size_t running_ GUARDED_BY(mutex_) = 0;
    std::list<Seat> seats_ GUARDED_BY(mutex_);
    std::map<const Loaders*, std::weak_ptr<Loaders>> loaders_ GUARDED_BY(mutex_);
};

} // namespace brevane
