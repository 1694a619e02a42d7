// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <expected>
#include <system_error>

namespace brevane {

/// The two ends of a pipe that no child process inherits.
struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;

    /// A new pipe, or the error of the operating system.
    [[nodiscard]] static std::expected<Pipe, std::error_code> open();
};

} // namespace brevane
