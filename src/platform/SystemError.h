// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <system_error>

namespace brevane {

/// The error of the system call that has just failed on this thread.
[[nodiscard]] inline std::error_code lastSystemError() {
    return {errno, std::system_category()};
}

} // namespace brevane
