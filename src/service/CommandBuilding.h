// SPDX-License-Identifier: MIT
#pragma once

#include "ServeMode.h"
#include "SourceType.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace brevane {

/// The command line that creates a share whose target the user gave. White space around `source`
/// is dropped; nothing is validated, and only the payload of a text is quoted for the shell.
[[nodiscard]] std::string buildAddCommand(std::string_view tailscaleBin, ServeMode mode,
                                          SourceType sourceType, std::string_view source,
                                          std::string_view urlPath, bool background);

/// The command line that shares a local port under `urlPath`; "/" and the empty path are the root.
[[nodiscard]] std::string buildPortServeCommand(std::string_view tailscaleBin, ServeMode mode,
                                                std::int64_t port, std::string_view urlPath,
                                                bool background);

} // namespace brevane
