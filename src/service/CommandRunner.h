// SPDX-License-Identifier: MIT
#pragma once

#include "ChildProcess.h"
#include "Configuration.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace brevane {

/// Runs command lines through the login shell, one at a time. Blocks; used on the service's
/// background queue only.
class CommandRunner {
public:
    /// What a command printed and how it ended.
    struct Result {
        std::string output;  ///< standard output, then standard error, trimmed at both ends
        std::int32_t status; ///< exit status or number of the ending signal; -1 if not started
    };

    explicit CommandRunner(Configuration configuration);

    /// How long the command for a background share may keep running after an interrupt: it only
    /// takes a moment, and if it is ended halfway, it is not known whether the share exists.
    static constexpr std::chrono::milliseconds backgroundPatience{500};

    /// Runs a command line and blocks until it ends, without a time limit. Output that is not UTF-8
    /// counts as empty, for each stream by itself. After an interrupt the command may keep running
    /// for `patience`.
    [[nodiscard]] Result runShellWithCode(const std::string& commandLine,
                                          std::chrono::milliseconds patience = {}) const;

    /// The same, but returns the output only.
    [[nodiscard]] std::string runShell(const std::string& commandLine) const;

    /// Ends the running command; later ones are not started and return the status -1. Any thread.
    void interrupt();

private:
    Configuration configuration_;
    std::atomic<bool> interrupted_ = false;
    Interrupt stop_;
};

} // namespace brevane
