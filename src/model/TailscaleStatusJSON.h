// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brevane {

/// What Brevane reads of `tailscale status --json`. Fields are named as the daemon's keys; a key
/// that is missing or null leaves its field empty.
struct TailscaleStatusJSON {
    /// This machine.
    struct SelfNode {
        std::optional<std::string> DNSName; ///< full DNS name, as a rule with a trailing dot
        std::optional<std::vector<std::string>> TailscaleIPs;
        std::optional<bool> Online;
        std::optional<std::string> HostName;
    };

    std::string BackendState;
    std::optional<SelfNode> selfNode; ///< key "Self"
};

/// Decodes a whole document. Nothing for what is not JSON (RFC 8259) in UTF-8, nests deeper than
/// 512, lacks "BackendState", or holds a listed key of another type; of a repeated key the last
/// one counts. The peers, nearly all of a large document, are checked but never built.
[[nodiscard]] std::optional<TailscaleStatusJSON> decodeTailscaleStatus(std::string_view document);

} // namespace brevane
