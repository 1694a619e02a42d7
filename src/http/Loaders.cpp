// SPDX-License-Identifier: MIT
#include "Loaders.h"

#include "ServerThreads.h"

#include <algorithm>
#include <new>
#include <utility>

namespace brevane {

namespace {

constexpr auto quick = std::chrono::milliseconds(50);
constexpr auto slowTime = std::chrono::seconds(2);
constexpr auto idleTime = std::chrono::seconds(10);

} // namespace

Loaders::Loaders(ServerThreads& threads) : threads_(threads) {}

void Loaders::post(Order order, std::function<void()> task) {
    {
        const MutexLock lock(mutex_);
        if (ended_) return;
        tasks_[static_cast<std::size_t>(order)].push_back(std::move(task));
        std::size_t queued = 0;
        for (const auto& tasks : tasks_)
            queued += tasks.size();
        wanted_.notifyOne();
        if (queued <= waiting_ || running_ == limit) return;
        ++running_;
    }
    if (threads_.launch([self = shared_from_this()] { self->run(); })) return;
    const MutexLock lock(mutex_);
    --running_;
    if (running_ > 0) return; // The running ones get to it.
    for (auto& tasks : tasks_)
        tasks.clear();
}

void Loaders::markSlow() {
    const MutexLock lock(mutex_);
    lastSlow_ = Clock::now();
    slow_ = true;
}

bool Loaders::isStillSlow() {
    const MutexLock lock(mutex_);
    const auto now = Clock::now();
    if (std::ranges::any_of(looks_, [now](auto begun) { return now - begun > quick; }))
        lastSlow_ = now;
    if (now - lastSlow_ > slowTime) slow_ = false;
    return slow_;
}

void Loaders::end() {
    const MutexLock lock(mutex_);
    ended_ = true;
    wanted_.notifyAll();
}

bool Loaders::isIdle() const {
    return std::ranges::all_of(tasks_, [](const auto& tasks) { return tasks.empty(); });
}

void Loaders::run() {
    const MutexLock lock(mutex_);
    while (!ended_) {
        if (isIdle()) {
            ++waiting_;
            const bool notified = wanted_.waitFor(mutex_, idleTime);
            --waiting_;
            if (!notified && isIdle()) break;
        } else {
            runNext();
        }
    }
    --running_;
}

void Loaders::runNext() {
    auto& tasks = *std::ranges::find_if(tasks_, [](const auto& one) { return !one.empty(); });
    std::function<void()> task = std::move(tasks.front());
    tasks.pop_front();
    const bool looks = &tasks == tasks_.data();
    const auto begun = Clock::now();
    const auto look = looks ? looks_.insert(looks_.end(), begun) : looks_.end();

    mutex_.unlock();
    try {
        task();
        task = nullptr; // may close a connection, for which the mutex must be free
    } catch (const std::bad_alloc&) {
        // The connection that ran out of memory was closed; the others are still served.
    }
    mutex_.lock();

    if (!looks) return;
    looks_.erase(look);
    if (Clock::now() - begun > quick) lastSlow_ = Clock::now();
}

} // namespace brevane
