// SPDX-License-Identifier: MIT
#pragma once

#include "ChildProcess.h"
#include "Configuration.h"

#include <atomic>
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

    /// Runs a command line and waits for it, without a time limit. A stream that is not UTF-8
    /// counts as empty.
    [[nodiscard]] Result runShellWithCode(const std::string& commandLine) const;

    /// The output alone.
    [[nodiscard]] std::string runShell(const std::string& commandLine) const;

    /// Ends the command that runs; later ones are not started any more and have a status of -1. Any
    /// thread.
    void interrupt();

private:
    Configuration configuration;
    std::atomic<bool> interrupted = false;
    Interrupt stop;
};

} // namespace brevane
