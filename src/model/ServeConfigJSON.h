// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// A JSON object as a map. Iteration is in key order, so that rows keep their order from one
/// refresh to the next.
template <class Value>
using JsonMap = std::map<std::string, Value, std::less<>>;

/// What listens on one tailnet TCP port.
struct TCPPortHandlerJSON {
    std::optional<bool> HTTPS;
    std::optional<std::string> TCPForward;
};

/// One handler at a mount path. The daemon sets at most one of the three.
struct HTTPHandlerJSON {
    std::optional<std::string> Proxy;
    std::optional<std::string> Path;
    std::optional<std::string> Text;
};

/// The web server of one host and port.
struct WebServerConfigJSON {
    std::optional<JsonMap<HTTPHandlerJSON>> Handlers; ///< by mount path
};

/// The configuration of one foreground `tailscale serve`.
struct ServeConfigFgJSON {
    std::optional<JsonMap<TCPPortHandlerJSON>> TCP;  ///< by port
    std::optional<JsonMap<WebServerConfigJSON>> Web; ///< by host:port
    std::optional<JsonMap<bool>> AllowFunnel;        ///< by host:port
};

/// The part of `tailscale serve status --json` that Brevane reads. Fields are named after the
/// daemon's keys; a missing or null key leaves its field empty.
struct ServeConfigJSON {
    std::optional<JsonMap<TCPPortHandlerJSON>> TCP;       ///< by port
    std::optional<JsonMap<WebServerConfigJSON>> Web;      ///< by host:port
    std::optional<JsonMap<bool>> AllowFunnel;             ///< by host:port
    std::optional<JsonMap<ServeConfigFgJSON>> Foreground; ///< by session
};

/// Decodes a whole document. Returns nullopt if it is not a JSON object (RFC 8259) in UTF-8, is
/// nested deeper than 512, or has a value of the wrong type under any of these keys. If a key is
/// repeated, its last value counts; unknown keys are skipped.
[[nodiscard]] std::optional<ServeConfigJSON> decodeServeConfig(std::string_view document);

} // namespace brevane
