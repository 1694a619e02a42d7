// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace brevane {

/// The build's version, such as "1.2.3".
[[nodiscard]] std::string_view buildVersion();

/// What the program prints instead of opening its window.
struct CommandLineAnswer {
    std::string text; ///< for standard output, or for standard error if the status is not 0
    int status;       ///< exit status: 0, or 2 for wrong usage
};

/// The answer to the arguments after the program's name; none if the window is to be opened. The
/// pair "-session ID", with which a session manager restarts a program, is ignored.
[[nodiscard]] std::optional<CommandLineAnswer>
answerCommandLine(std::span<const std::string_view> arguments);

} // namespace brevane
