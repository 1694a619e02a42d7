// SPDX-License-Identifier: MIT
#pragma once

#include "DoorbellSocket.h"

#include <QSocketNotifier>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace brevane {

/// Lets one program at a time run on a preferences folder; two would overwrite each other's record.
/// The lock is an advisory one on the folder itself and the others call through an abstract socket
/// (unix(7)) named after it: no file is written, and the kernel clears both away however the
/// program ends. Linux only. Main thread.
class SingleInstance {
public:
    enum class Claim {
        first,      ///< this program is the one to run
        otherAsked, ///< another one runs and has been asked to show its window
        noAnswer    ///< another one runs and cannot be reached
    };

    /// `folder` is made if it is missing.
    explicit SingleInstance(const std::filesystem::path& folder);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Takes the lock, or asks who has it to show its window. Blocks a few seconds at most while
    /// the other one starts, ends or is busy. Where the file system knows no locks everyone is
    /// first.
    [[nodiscard]] Claim claim();

    /// Calls `raise` from the event loop whenever another program asks, also for those that asked
    /// since the claim. For the one that is first.
    void onRaise(std::function<void()> raise);

private:
    int folder = -1;
    std::string name; ///< of the socket of who holds the lock
    std::unique_ptr<DoorbellSocket> doorbell;
    std::unique_ptr<QSocketNotifier> notifier;
};

} // namespace brevane
