// SPDX-License-Identifier: MIT
#pragma once

#include "Interrupt.h"

#include <chrono>
#include <expected>
#include <string>
#include <system_error>
#include <vector>

namespace brevane {

/// A child process to be run to its end. It starts with standard input from the null device, a
/// clear signal mask, default signal dispositions, no descriptor of ours but its two output pipes,
/// and as the leader of a session of its own, where it has no terminal to ask something at. On
/// Linux it is killed when our process ends, however that ends, and with it what it has started in
/// its process group.
struct ChildProcess {
    /// What a child left behind.
    struct Outcome {
        std::string standardOutput;
        std::string standardError;
        int status; ///< exit status, or the number of the signal that ended it
    };

    std::string executable;               ///< path; not searched for
    std::vector<std::string> arguments;   ///< without the name of the program itself
    std::vector<std::string> environment; ///< complete, each "NAME=value"
    /// How long it may go on after an interrupt before it gets SIGTERM.
    std::chrono::milliseconds patience{0};

    /// Launches the child, drains both of its outputs at the same time and reaps it. Blocks until
    /// it has exited and both outputs are at their end, without a time limit: a process of its own
    /// that keeps an output open keeps this waiting. The error where it could not be launched.
    /// After an interrupt, returns once the child and its outputs have ended, at the latest when
    /// SIGKILL has ended the child. Any thread.
    [[nodiscard]] std::expected<Outcome, std::error_code> run(const Interrupt& interrupt) const;
};

} // namespace brevane
