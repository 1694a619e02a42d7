// SPDX-License-Identifier: MIT
#pragma once

#include "MainQueue.h"

#include <QObject>

#include <atomic>

namespace brevane {

/// The main queue on Qt's event loop. Made on the main thread while the application object exists;
/// outlives every thread that posts to it.
class QtMainQueue final : public MainQueue {
public:
    QtMainQueue();
    /// Drops what still waits.
    ~QtMainQueue() override = default;

    /// Once the queue is closed, `task` is destroyed on the calling thread.
    void post(std::function<void()> task) override;
    void postAfter(std::chrono::milliseconds delay, std::function<void()> task) override;

    /// Takes no task any more; those that wait are still run. The end of the event loop closes it
    /// too, and drops what waits. Any thread.
    void close() { isOpen_ = false; }

private:
    std::atomic<bool> isOpen_ = true;
    QObject receiver_;
};

} // namespace brevane
