// SPDX-License-Identifier: MIT
#pragma once

#include "ChildProcess.h"

#include <sys/types.h>

#include <expected>
#include <system_error>
#include <vector>

namespace brevane {

/// Starts the child with these descriptors as its standard output and standard error, and returns
/// its process ID. The caller must reap it. Any thread; on Linux the child gets SIGKILL when that
/// thread, or the whole process, ends.
[[nodiscard]] std::expected<pid_t, std::error_code> launch(const ChildProcess& description,
                                                           int standardOutput, int standardError);

/// A null-terminated array of pointers into `texts`, for exec and posix_spawn, which do not modify
/// them.
[[nodiscard]] inline std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace brevane
