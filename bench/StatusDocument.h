// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace brevane::bench {

/// The status of a node in a tailnet with this many peers, formatted as by
/// `tailscale status --json`: about 1 kB per peer.
[[nodiscard]] std::string statusDocument(int peers);

} // namespace brevane::bench
