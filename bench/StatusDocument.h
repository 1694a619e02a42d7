// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace brevane::bench {

/// The status document of a node in a tailnet with that many peers, laid out as
/// `tailscale status --json` prints it: about 1 kB for each.
[[nodiscard]] std::string statusDocument(int peers);

} // namespace brevane::bench
