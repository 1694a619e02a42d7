// SPDX-License-Identifier: MIT
#pragma once

#include <expected>
#include <string>
#include <system_error>
#include <vector>

namespace brevane {

/// Asks a running child process to end, from any thread. Once raised it stays raised.
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Ends the child that runs with this interrupt, and every later one as soon as it starts:
    /// SIGTERM to its process group, SIGKILL a second later. Any thread.
    void raise();

private:
    friend struct ChildProcess;
    int readEnd = -1;
    int writeEnd = -1;
};

/// A child process to be run to its end. It starts with standard input from the null device, a
/// clear signal mask, default signal dispositions, a process group of its own and no descriptor
/// of ours but its two output pipes.
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

    /// Launches the child, drains both of its outputs at the same time and reaps it. Blocks until
    /// it has exited and both outputs are at their end, without a time limit: a process of its own
    /// that keeps an output open keeps this waiting. The error where it could not be launched.
    /// After an interrupt, returns as soon as the child itself is gone. Any thread.
    [[nodiscard]] std::expected<Outcome, std::error_code> run(const Interrupt& interrupt) const;
};

} // namespace brevane
