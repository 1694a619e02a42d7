// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <expected>
#include <system_error>

namespace brevane {

/// The two ends of a close-on-exec pipe.
struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;

    /// Opens a new pipe, or returns the operating system's error.
    [[nodiscard]] static std::expected<Pipe, std::error_code> open();
};

} // namespace brevane
