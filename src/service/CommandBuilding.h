// SPDX-License-Identifier: MIT
#pragma once

#include "ServeMode.h"
#include "SourceType.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace brevane {

/// The text as one word for the shell: in single quotes if it contains a space, "(", ")", "&" or a
/// single quote, otherwise unchanged, even if it contains other characters that the shell
/// interprets.
[[nodiscard]] std::string shellQuote(std::string_view text);

/// The text as one word for the shell, always in single quotes.
[[nodiscard]] std::string inSingleQuotes(std::string_view text);

/// The command line that creates a share of what the user entered, trimmed of white space. Nothing
/// is validated, and only the payload of a text is quoted for the shell.
[[nodiscard]] std::string buildAddCommand(std::string_view tailscaleBin, ServeMode mode,
                                          SourceType sourceType, std::string_view source,
                                          std::string_view urlPath, bool background);

/// The command line that shares a local port under `urlPath`; "/" and the empty path are the root.
[[nodiscard]] std::string buildPortServeCommand(std::string_view tailscaleBin, ServeMode mode,
                                                std::int64_t port, std::string_view urlPath,
                                                bool background);

} // namespace brevane
