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

    /// Once the event loop has ended, `task` is destroyed on the calling thread.
    void post(std::function<void()> task) override;

private:
    void close();

    std::atomic<bool> isOpen = true;
    QObject receiver;
};

} // namespace brevane
