// SPDX-License-Identifier: MIT
#pragma once

#include "Mutex.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <list>
#include <memory>

namespace brevane {

class ServerThreads;

/// The threads of one served folder that may block on its disk, so that a folder that hangs delays
/// no other: at most `limit` of them, started on demand, each ending when it has been idle for a
/// while.
class Loaders : public std::enable_shared_from_this<Loaders> {
public:
    static constexpr std::size_t limit = 8;

    /// Priorities, highest first: requests to a slow folder, pieces of large files for clients that
    /// are waiting, pieces for clients that have closed their sending half and may be gone.
    enum class Order { look, load, last };

    explicit Loaders(ServerThreads& threads);
    Loaders(const Loaders&) = delete;
    Loaders& operator=(const Loaders&) = delete;

    /// Queues `task` for a loader; drops it if there is none and none can be started, or after
    /// end(). Any thread.
    void post(Order order, std::function<void()> task);

    /// Whether this folder may only be accessed on its loaders: an access has hung, and in the last
    /// two seconds one was slow. Any thread.
    [[nodiscard]] bool isSlow() { return slow_ && isStillSlow(); }
    /// Records that an access to the folder hangs. Any thread.
    void markSlow();

    /// Ends each thread after its current task. Any thread.
    void end();

private:
    using Clock = std::chrono::steady_clock;

    bool isStillSlow();
    void run();
    void runNext() REQUIRES(mutex_);
    [[nodiscard]] bool isIdle() const REQUIRES(mutex_);

    ServerThreads& threads_;
    std::atomic<bool> slow_ = false;

    Mutex mutex_;
    Condition wanted_;
    std::array<std::deque<std::function<void()>>, 3> tasks_ GUARDED_BY(mutex_);
    std::size_t running_ GUARDED_BY(mutex_) = 0;
    std::size_t waiting_ GUARDED_BY(mutex_) = 0;
    bool ended_ GUARDED_BY(mutex_) = false;
    std::list<Clock::time_point> looks_ GUARDED_BY(mutex_); // start times of those in progress
    Clock::time_point lastSlow_ GUARDED_BY(mutex_);
};

} // namespace brevane
