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

/// The executor type of all connections. Not any_io_executor, which costs up to a fifth of a small
/// request's time.
using Executor = boost::asio::io_context::executor_type;

/// The threads of a server pool: handlers, which answer requests, and senders, which send what does
/// not go out at once, so that downloads never delay small requests. There is one of each per
/// processor. They block on nothing but the file system, and one that hangs there is replaced.
class ServerThreads : public std::enable_shared_from_this<ServerThreads> {
public:
    /// Starts the threads. Throws std::system_error or boost::system::system_error if no thread or
    /// descriptor is left.
    [[nodiscard]] static std::shared_ptr<ServerThreads> start();
    ServerThreads(const ServerThreads&) = delete;
    ServerThreads& operator=(const ServerThreads&) = delete;

    /// Ends the threads and closes all connections. Waits at most half a second; a thread that
    /// hangs in a file system ends when its system call returns.
    void end();
    [[nodiscard]] bool isEnding() const { return ending_; }

    [[nodiscard]] Executor handlers() { return handlers_.get_executor(); }
    [[nodiscard]] Executor senders() { return senders_.get_executor(); }
    [[nodiscard]] Connections& connections() { return connections_; }

    /// Calls `look`, which accesses that folder's disk, and returns its result. If it hangs, the
    /// folder is marked as slow and the thread is replaced. Any thread; only handlers and senders
    /// are watched.
    template <class Look>
    auto visit(const Loaders& folder, Look look) {
        const Visit visit(*this, folder);
        return look();
    }

    /// Creates the loaders of a folder.
    [[nodiscard]] std::shared_ptr<Loaders> makeLoaders();

    /// Runs `work` on a new thread. Returns false if none can be started, or after end().
    [[nodiscard]] bool launch(std::function<void()> work);

private:
    // The state of a handler or sender, checked by the watch.
    struct Seat {
        boost::asio::io_context& context;
        std::atomic<std::uint64_t> visits = 0; // odd during a visit
        std::atomic<const Loaders*> folder = nullptr;
        std::uint64_t visitsSeen = 0; // used by the watch only
        std::atomic<bool> replaced = false;
    };

    // Marks a disk access by the calling thread.
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
    // Adds the event loops of threads that hang. Returns whether there were visits since the last
    // check.
    bool lookAround(std::vector<boost::asio::io_context*>& hanging) REQUIRES(mutex_);

    static thread_local Seat* ownSeat;

    std::atomic<bool> ending_ = false;
    std::atomic<bool> watching_ = false;
    boost::asio::io_context handlers_;
    boost::asio::io_context senders_;
    boost::asio::executor_work_guard<Executor> handlerWork_;
    boost::asio::executor_work_guard<Executor> senderWork_;
    Connections connections_; // destroyed before the event loops that they are registered with

    Mutex mutex_;
    Condition wanted_; // a visit has begun, or end() was called
    Condition ended_;  // a thread has ended
    std::size_t running_ GUARDED_BY(mutex_) = 0;
    std::list<Seat> seats_ GUARDED_BY(mutex_);
    std::map<const Loaders*, std::weak_ptr<Loaders>> loaders_ GUARDED_BY(mutex_);
};

} // namespace brevane
