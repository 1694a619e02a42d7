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

/// Allows one instance per preferences folder; two would overwrite each other's record. A lock
/// file, and a socket at which later instances ring, are in the user's runtime folder
/// (XDG_RUNTIME_DIR), named after a hash of the preferences folder's path; without a runtime
/// folder, in the preferences folder. The kernel releases the lock however the program ends. Linux
/// only. Main thread.
class SingleInstance {
public:
    enum class Claim {
        first,      ///< this instance is the one to run
        otherAsked, ///< another one runs and has acknowledged the request to show its window
        noAnswer    ///< another one runs and does not answer
    };

    explicit SingleInstance(const std::filesystem::path& preferences);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Takes the lock, or asks the instance that has it to show its window, passing `token`: the
    /// activation token with which this program was started (xdg-activation-v1), or none. Blocks
    /// for three seconds at most, while the other one starts, ends or is busy. If the file system
    /// does not support locks, every instance is first.
    [[nodiscard]] Claim claim(const std::string& token = {});

    /// Calls `raise` with the other instance's token from the event loop whenever one asks,
    /// including those that have asked since the claim. Does nothing unless this instance is first.
    void onRaise(std::function<void(const std::string& token)> raise);

private:
    Descriptor folder_;
    std::string name_; ///< of the socket, and of the lock file before its ".lock"
    Descriptor lock_;
    std::string socketPath_;
    std::unique_ptr<DoorbellSocket> doorbell_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace brevane
