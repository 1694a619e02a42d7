// SPDX-License-Identifier: MIT
#pragma once

#include "ServeConfigJSON.h"
#include "ServeEntry.h"

#include <string_view>
#include <vector>

namespace brevane {

/// Converts a serve configuration to the rows of the share list: background web handlers,
/// background TCP forwards, then foreground web handlers, stably partitioned so that funnelled rows
/// come last. `dnsName` is this machine's full DNS name without trailing dot, since the daemon
/// lists TCP forwards by port only. Every call generates new IDs.
[[nodiscard]] std::vector<ServeEntry> extractEntries(const ServeConfigJSON& config,
                                                     std::string_view dnsName);

} // namespace brevane
