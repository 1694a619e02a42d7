// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace brevane {

/// A thread that runs tasks one at a time, in posting order.
class SerialQueue {
public:
    /// Starts the thread; `label` names it for debuggers (truncated to 15 bytes on Linux).
    explicit SerialQueue(const std::string& label);

    /// Waits for the running task, drops the queued ones and joins the thread. On the queue's own
    /// thread (a task held the last reference to the owner) it detaches the thread instead, which
    /// ends after that task.
    ~SerialQueue();

    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Appends a task. Any thread.
    void post(std::function<void()> task);

private:
    struct Worker;
    std::shared_ptr<Worker> worker_;
};

} // namespace brevane
