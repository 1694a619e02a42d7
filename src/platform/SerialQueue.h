// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace brevane {

/// A thread that runs tasks one at a time, in the order of posting.
class SerialQueue {
public:
    /// Starts the thread; `label` names it for debuggers (15 bytes of it on Linux).
    explicit SerialQueue(const std::string& label);

    /// Lets the running task end, drops those that wait and joins the thread. On the queue's own
    /// thread (a task held the last reference to the owner) it cannot join: the thread ends by
    /// itself after that task.
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
