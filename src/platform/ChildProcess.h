// SPDX-License-Identifier: MIT
#pragma once

#include "Interrupt.h"

#include <chrono>
#include <expected>
#include <string>
#include <system_error>
#include <vector>

namespace brevane {

/// Describes a child process and runs it to its end. The child starts with /dev/null as standard
/// input, an empty signal mask, default signal dispositions, no inherited descriptors except its
/// two output pipes, and as the leader of a new session without a controlling terminal, so that it
/// cannot prompt. On Linux the child and its process group are killed when our process ends, even
/// by SIGKILL.
struct ChildProcess {
    /// What a child wrote and how it ended.
    struct Outcome {
        std::string standardOutput;
        std::string standardError;
        int status; ///< exit status, or the number of the signal that ended it
    };

    std::string executable;               ///< a path; $PATH is not searched
    std::vector<std::string> arguments;   ///< without argv[0]
    std::vector<std::string> environment; ///< complete, each "NAME=value"
    /// How long it may keep running after an interrupt before it gets SIGTERM.
    std::chrono::milliseconds patience{0};

    /// Launches the child, drains both outputs concurrently and reaps it. Blocks without a time
    /// limit until the child has exited and both outputs have reached end of file; a descendant
    /// that keeps an output open prolongs this. After an interrupt, blocks no longer than until
    /// SIGKILL has ended the child. Returns an error if the child could not be launched or was
    /// reaped by someone else. Any thread.
    [[nodiscard]] std::expected<Outcome, std::error_code> run(const Interrupt& interrupt) const;
};

} // namespace brevane
