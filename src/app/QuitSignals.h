// SPDX-License-Identifier: MIT
#pragma once

#include <QSocketNotifier>

#include <array>
#include <functional>
#include <memory>

namespace brevane {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread. One that was ignored when the
/// program started (nohup) stays ignored. One instance at a time; main thread.
class QuitSignals {
public:
    /// `quit` is called from the event loop, once for any number of signals that arrive together.
    explicit QuitSignals(std::function<void()> quit);
    /// The signals are ignored from here on: who owns this is ending already.
    ~QuitSignals();
    QuitSignals(const QuitSignals&) = delete;
    QuitSignals& operator=(const QuitSignals&) = delete;

private:
    std::array<int, 2> pipe{-1, -1};
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace brevane
