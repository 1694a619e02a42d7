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

/// Runs command lines through the login shell, one after the other. Blocks its caller: used on the
/// service's background queue only.
class CommandRunner {
public:
    /// What a command printed and how it ended.
    struct Result {
        std::string output;  ///< standard output, then standard error, trimmed at both ends
        std::int32_t status; ///< exit status; -1 where the shell was not started
    };

    explicit CommandRunner(Configuration configuration);

    /// How long the command of a background share may go on after an interrupt: it is done in a
    /// moment, and ended half-way it leaves open what it has made.
    static constexpr std::chrono::milliseconds backgroundPatience{500};

    /// Runs a command line and waits for it, without a time limit. A stream that is not UTF-8
    /// counts as empty. After an interrupt the command may go on for as long as `patience`.
    [[nodiscard]] Result runShellWithCode(const std::string& commandLine,
                                          std::chrono::milliseconds patience = {}) const;

    /// The output alone.
    [[nodiscard]] std::string runShell(const std::string& commandLine) const;

    /// Ends the command that runs; later ones are not started any more and have a status of -1. Any
    /// thread.
    void interrupt();

private:
    Configuration configuration_;
    std::atomic<bool> interrupted_ = false;
    Interrupt stop_;
};

} // namespace brevane
