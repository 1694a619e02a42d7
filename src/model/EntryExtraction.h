// SPDX-License-Identifier: MIT
#pragma once

#include "ServeConfigJSON.h"
#include "ServeEntry.h"

#include <string_view>
#include <vector>

namespace brevane {

/// The rows of the share list that a serve configuration stands for: background web handlers, then
/// background TCP forwards, then foreground web handlers, with the funnelled ones after all others
/// and the order otherwise kept. `dnsName` is this machine's full DNS name without trailing dot:
/// the daemon lists TCP forwards by port alone. Every call draws new identities.
[[nodiscard]] std::vector<ServeEntry> extractEntries(const ServeConfigJSON& config,
                                                     std::string_view dnsName);

} // namespace brevane
