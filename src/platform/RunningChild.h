// SPDX-License-Identifier: MIT
#pragma once

#include "ChildProcess.h"
#include "Descriptor.h"
#include "Interrupt.h"

#include <sys/types.h>

#include <chrono>
#include <expected>
#include <system_error>

namespace brevane {

/// A child process that has been launched as the leader of a session, and is not reaped yet.
class RunningChild {
public:
    /// Takes over the child and the read ends of its outputs.
    RunningChild(pid_t process, Descriptor standardOutput, Descriptor standardError,
                 std::chrono::milliseconds patience);

    /// Sees the child to its end as ChildProcess::run() promises. Once only. The error where
    /// someone else has reaped the child.
    [[nodiscard]] std::expected<ChildProcess::Outcome, std::error_code>
    finish(const Interrupt& interrupt);

private:
    void drainUntilExit(const Interrupt& interrupt);
    void signalGroup(int signal) const;

    pid_t process_;
    Descriptor standardOutput_;
    Descriptor standardError_;
    std::chrono::milliseconds patience_;
    ChildProcess::Outcome outcome_{};
};

} // namespace brevane
