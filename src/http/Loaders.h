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

/// The threads of one served folder that may wait for its disk, so that a folder that hangs holds
/// up no other: at most `limit` of them, started when there is work, ended when there has been none
/// for a while.
class Loaders : public std::enable_shared_from_this<Loaders> {
public:
    static constexpr std::size_t limit = 8;

    /// What is done first: requests that a slow folder leaves to its loaders, pieces of large files
    /// for clients that wait, pieces for those that have ended their half and may have gone.
    enum class Order { look, load, last };

    explicit Loaders(ServerThreads& threads);
    Loaders(const Loaders&) = delete;
    Loaders& operator=(const Loaders&) = delete;

    /// Runs `task` on a loader; drops it where there is none. Any thread.
    void post(Order order, std::function<void()> task);

    /// Whether looks at this folder belong on its loaders: one has hung, and since then not all
    /// were quick. Any thread.
    [[nodiscard]] bool isSlow() { return slow_ && isStillSlow(); }
    /// A look at the folder hangs. Any thread.
    void markSlow();

    /// Lets the threads end. Any thread.
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
    std::list<Clock::time_point> looks_ GUARDED_BY(mutex_); // when those under way began
    Clock::time_point lastSlow_ GUARDED_BY(mutex_);
};

} // namespace brevane
