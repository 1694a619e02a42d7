// SPDX-License-Identifier: MIT
#pragma once

#include "ServeEntry.h"

#include <cstdint>
#include <optional>
#include <string>

namespace brevane {

/// The port that stopping this entry names: what follows the last ":" of its host and port, all of
/// it where there is no ":", and "443" where there is nothing to split.
[[nodiscard]] std::string stopPort(const ServeEntry& entry);

/// The port that a proxy entry's target names explicitly; none for every other kind of entry.
[[nodiscard]] std::optional<std::int64_t> proxiedPort(const ServeEntry& entry);

} // namespace brevane
