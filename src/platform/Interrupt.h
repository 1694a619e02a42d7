// SPDX-License-Identifier: MIT
#pragma once

#include "Pipe.h"

namespace brevane {

/// Asks a running child process to end, from any thread. Once raised it stays raised.
class Interrupt {
public:
    /// Throws std::system_error where the process has no descriptor left.
    Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Ends the child that runs with this interrupt, and every later one as soon as it starts:
    /// SIGTERM to its process group, SIGKILL a second later. Any thread.
    void raise();

    /// A descriptor that is readable from the raising on. Not to be read from.
    [[nodiscard]] int descriptor() const { return pipe_.readEnd.get(); }

private:
    Pipe pipe_;
};

} // namespace brevane
