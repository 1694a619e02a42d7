// SPDX-License-Identifier: MIT
#pragma once

#include "MainQueue.h"
#include "Mutex.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace brevane::test {

/// A main queue whose tasks the test runs one by one.
class PumpedMainQueue final : public MainQueue {
public:
    void post(std::function<void()> task) override {
        const MutexLock lock(mutex_);
        boost::asio::post(loop_->context, std::move(task));
    }

    /// Keeps the task: only `runDelayed` runs delayed tasks.
    void postAfter(std::chrono::milliseconds delay, std::function<void()> task) override {
        delayed_.emplace_back(delay, std::move(task));
    }

    /// Runs the oldest task posted with this delay. Returns false if there is none.
    bool runDelayed(std::chrono::milliseconds delay) {
        const auto found = std::ranges::find(delayed_, delay, &Delayed::first);
        if (found == delayed_.end()) return false;
        const auto task = std::move(found->second);
        delayed_.erase(found);
        task();
        return true;
    }

    /// Waits for the next task and runs it. Returns false after a minute without one, as when the
    /// test hangs.
    bool runOne() { return current().context.run_one_for(std::chrono::seconds(60)) == 1; }

    /// Runs the tasks that are queued now.
    void runPending() { current().context.poll(); }

    /// Drops the queued tasks, as happens once the event loop has ended.
    void dropPending() {
        auto dropped = std::make_unique<Loop>();
        {
            const MutexLock lock(mutex_);
            std::swap(loop_, dropped);
        }
        // Outside the lock: destroying the tasks may wait for threads that post.
        dropped.reset();
    }

    /// Runs tasks until the condition holds. Returns false if it never does.
    bool runUntil(const std::function<bool()>& condition) {
        while (!condition())
            if (!runOne()) return false;
        return true;
    }

private:
    using Delayed = std::pair<std::chrono::milliseconds, std::function<void()>>;
    struct Loop {
        boost::asio::io_context context;
        boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work{
            context.get_executor()};
    };
    Loop& current() {
        const MutexLock lock(mutex_);
        return *loop_;
    }

    Mutex mutex_;
    std::unique_ptr<Loop> loop_ GUARDED_BY(mutex_) = std::make_unique<Loop>();
    std::vector<Delayed> delayed_;
};

} // namespace brevane::test
