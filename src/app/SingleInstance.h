// SPDX-License-Identifier: MIT
#pragma once

#include "DoorbellSocket.h"

#include "Descriptor.h"

#include <QSocketNotifier>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace brevane {

/// Lets one program at a time run on a preferences folder; two would overwrite each other's record.
/// A lock file, and a socket through which the others call, lie in the user's runtime folder
/// (XDG_RUNTIME_DIR) under a name made of the preferences folder's path; where there is no runtime
/// folder, in the preferences folder. The kernel frees the lock however the program ends. Linux
/// only. Main thread.
class SingleInstance {
public:
    enum class Claim {
        first,      ///< this program is the one to run
        otherAsked, ///< another one runs and has been asked to show its window
        noAnswer    ///< another one runs and does not answer
    };

    explicit SingleInstance(const std::filesystem::path& preferences);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Takes the lock, or asks its holder to show its window and hands over `token`: the activation
    /// token of this program's start (xdg-activation-v1), empty if there is none. Blocks a few
    /// seconds at most while the other one starts, ends or is busy. On a file system without locks
    /// everyone is first.
    [[nodiscard]] Claim claim(const std::string& token = {});

    /// Calls `raise` with the token from the event loop whenever another program asks, also for
    /// those that have asked since the claim. For the one that is first.
    void onRaise(std::function<void(const std::string& token)> raise);

private:
    Descriptor folder_;
    std::string name_; ///< of the socket of who holds the lock
    Descriptor lock_;
    std::string socketPath_;
    std::unique_ptr<DoorbellSocket> doorbell_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace brevane
