// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

namespace brevane {

/// The main thread's queue of tasks. The application implements it with its event loop.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// Runs `task` on the main thread, in posting order, never before this returns. Any thread,
    /// including the main thread. Drops the task if the event loop has ended.
    virtual void post(std::function<void()> task) = 0;

    /// Runs `task` on the main thread after `delay`, unless the event loop has ended by then. Main
    /// thread only.
    virtual void postAfter(std::chrono::milliseconds delay, std::function<void()> task) = 0;
};

} // namespace brevane
