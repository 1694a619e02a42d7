// SPDX-License-Identifier: MIT
#pragma once

#include "ChildProcess.h"

#include <sys/types.h>

#include <expected>
#include <system_error>
#include <vector>

namespace brevane {

/// Starts the child that `description` describes, with these descriptors as its standard output and
/// standard error, and returns its number. It is the caller's to reap. Any thread; on Linux the
/// child is killed when that thread ends, also with the whole process.
[[nodiscard]] std::expected<pid_t, std::error_code> launch(const ChildProcess& description,
                                                           int standardOutput, int standardError);

/// The texts as C has them, null-terminated. exec and posix_spawn do not change them.
[[nodiscard]] inline std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace brevane
