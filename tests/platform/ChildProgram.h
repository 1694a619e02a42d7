// SPDX-License-Identifier: MIT
#pragma once

#include "ChildProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <expected>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace brevane {

using Result = std::expected<ChildProcess::Outcome, std::error_code>;

// The program in child-program.cpp, which reports about itself.
inline ChildProcess child(std::vector<std::string> arguments,
                          std::vector<std::string> environment = {}) {
    return {.executable = CHILD_PROGRAM,
            .arguments = std::move(arguments),
            .environment = std::move(environment)};
}

inline ChildProcess::Outcome run(const ChildProcess& process) {
    const Interrupt interrupt;
    Result result = process.run(interrupt);
    if (!result) {
        ADD_FAILURE() << result.error().message();
        return {.standardOutput = "", .standardError = "", .status = -1};
    }
    return std::move(*result);
}

inline ChildProcess shell(std::string commandLine) {
    return {
        .executable = "/bin/sh", .arguments = {"-c", std::move(commandLine)}, .environment = {}};
}

inline int openDescriptors() {
    int count = 0;
    for (int descriptor = 0; descriptor < 4096; ++descriptor)
        count += fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
    return count;
}

inline bool hasNoChild() {
    return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}

} // namespace brevane
