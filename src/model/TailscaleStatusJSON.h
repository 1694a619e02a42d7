// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevane {

/// The part of `tailscale status --json` that Brevane reads. Fields are named after the daemon's
/// keys; a missing or null key leaves an optional field empty.
struct TailscaleStatusJSON {
    /// This machine.
    struct SelfNode {
        std::optional<std::string> DNSName; ///< full DNS name, usually with a trailing dot
        std::optional<std::vector<std::string>> TailscaleIPs;
        std::optional<bool> Online;
        std::optional<std::string> HostName;
    };

    std::string BackendState;
    std::optional<SelfNode> selfNode; ///< key "Self"
};

/// Decodes a whole document. Returns nullopt if it is not a JSON object (RFC 8259) in UTF-8, is
/// nested deeper than 512, lacks "BackendState", or has a value of the wrong type under any of
/// these keys. If a key is repeated, its last value counts. The peers, almost all of a large
/// document, are validated but not built.
[[nodiscard]] std::optional<TailscaleStatusJSON> decodeTailscaleStatus(std::string_view document);

} // namespace brevane
