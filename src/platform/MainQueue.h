// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

namespace brevane {

/// The main thread's queue of tasks. The application implements it with its event loop.
class MainQueue {
public:
    virtual ~MainQueue() = default;

    /// Runs `task` later on the main thread, never before returning, in the order of posting. Any
    /// thread, the main thread included. After the event loop has ended the task is dropped.
    virtual void post(std::function<void()> task) = 0;

    /// Runs `task` on the main thread once `delay` has passed. Main thread only. After the event
    /// loop has ended the task does not run.
    virtual void postAfter(std::chrono::milliseconds delay, std::function<void()> task) = 0;
};

} // namespace brevane
