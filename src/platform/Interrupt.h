// SPDX-License-Identifier: MIT
#pragma once

#include "Pipe.h"

namespace brevane {

/// Asks a running child process to end, from any thread. Once raised it stays raised.
class Interrupt {
public:
    /// Throws std::system_error if no descriptor is left.
    Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Ends the child that runs with this interrupt, and every later one as soon as it starts:
    /// SIGTERM to its process group after the child's `patience`, SIGKILL a second later. Any
    /// thread.
    void raise();

    /// A descriptor that polls as readable once raised. Do not read from it.
    [[nodiscard]] int descriptor() const { return pipe_.readEnd.get(); }

private:
    Pipe pipe_;
};

} // namespace brevane
