// SPDX-License-Identifier: MIT
#pragma once

#include "ServeEntry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace brevane {

/// The port that names this entry when it is stopped: the part of its host and port after the last
/// ":", ignoring ":" at the end; all of it if there is no ":", and "443" if nothing is left.
[[nodiscard]] std::string stopPort(const ServeEntry& entry);

/// The explicit port of a proxy entry's target; nullopt if there is none, and for other kinds of
/// entry.
[[nodiscard]] std::optional<std::int64_t> proxiedPort(const ServeEntry& entry);

} // namespace brevane
