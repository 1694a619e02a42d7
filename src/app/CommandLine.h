// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace brevane {

/// The version that the build was given, such as "1.2.3".
[[nodiscard]] std::string_view buildVersion();

/// What the program says instead of opening its window.
struct CommandLineAnswer {
    std::string text; ///< for standard output, or for standard error where the status is not 0
    int status;       ///< exit status: 0, or 2 for wrong usage
};

/// The answer to the arguments after the program's name; none if the window is to be opened. The
/// pair "-session ID", with which a session manager starts a program again, is let through.
[[nodiscard]] std::optional<CommandLineAnswer>
answerCommandLine(std::span<const std::string_view> arguments);

} // namespace brevane
