// SPDX-License-Identifier: MIT
#pragma once

#include "MainQueue.h"

#include <QObject>

#include <atomic>

namespace brevane {

/// The main queue on Qt's event loop. Created on the main thread while the application object
/// exists; outlives every thread that posts to it.
class QtMainQueue final : public MainQueue {
public:
    QtMainQueue();
    /// Drops the pending tasks.
    ~QtMainQueue() override = default;

    /// Once the queue is closed, `task` is destroyed on the calling thread.
    void post(std::function<void()> task) override;
    void postAfter(std::chrono::milliseconds delay, std::function<void()> task) override;

    /// Drops tasks posted from here on; pending ones still run. The end of the event loop closes
    /// the queue too, and drops the pending ones. Any thread.
    void close() { isOpen_ = false; }

private:
    std::atomic<bool> isOpen_ = true;
    QObject receiver_;
};

} // namespace brevane
