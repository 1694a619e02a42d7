// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// A JSON object taken as a map. Members are visited in the order of their names, so that the rows
/// made from it stand still from one refresh to the next.
template <class Value>
using JsonMap = std::map<std::string, Value, std::less<>>;

/// What listens on one tailnet TCP port.
struct TCPPortHandlerJSON {
    std::optional<bool> HTTPS;
    std::optional<std::string> TCPForward;
};

/// One handler at a mount path. The daemon fills at most one of the three.
struct HTTPHandlerJSON {
    std::optional<std::string> Proxy;
    std::optional<std::string> Path;
    std::optional<std::string> Text;
};

/// The web server of one host and port.
struct WebServerConfigJSON {
    std::optional<JsonMap<HTTPHandlerJSON>> Handlers; ///< by mount path
};

/// The configuration that one foreground `tailscale serve` holds.
struct ServeConfigFgJSON {
    std::optional<JsonMap<TCPPortHandlerJSON>> TCP;  ///< by port
    std::optional<JsonMap<WebServerConfigJSON>> Web; ///< by host:port
    std::optional<JsonMap<bool>> AllowFunnel;        ///< by host:port
};

/// What Brevane reads of `tailscale serve status --json`. Fields are named as the daemon's keys; a
/// key that is missing or null leaves its field empty.
struct ServeConfigJSON {
    std::optional<JsonMap<TCPPortHandlerJSON>> TCP;       ///< by port
    std::optional<JsonMap<WebServerConfigJSON>> Web;      ///< by host:port
    std::optional<JsonMap<bool>> AllowFunnel;             ///< by host:port
    std::optional<JsonMap<ServeConfigFgJSON>> Foreground; ///< by session
};

/// Decodes a whole document. Nothing for what is not a JSON object (RFC 8259) in UTF-8, nests
/// deeper than 512, or holds a listed key of another type anywhere; of a repeated key the last
/// one counts, and unknown keys are skipped.
[[nodiscard]] std::optional<ServeConfigJSON> decodeServeConfig(std::string_view document);

} // namespace brevane
