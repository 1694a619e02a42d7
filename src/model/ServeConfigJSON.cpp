// SPDX-License-Identifier: MIT
#include "ServeConfigJSON.h"

#include "JsonDecoding.h"

#include <array>

namespace brevane {

namespace json = boost::json;

// The templates in JsonDecoding.h find these overloads by argument-dependent lookup.

static bool read(const json::value& value, TCPPortHandlerJSON& handler) {
    const auto* const object = value.if_object();
    return object != nullptr && read(*object, "HTTPS", handler.HTTPS) &&
           read(*object, "TCPForward", handler.TCPForward);
}

static bool read(const json::value& value, HTTPHandlerJSON& handler) {
    const auto* const object = value.if_object();
    return object != nullptr && read(*object, "Proxy", handler.Proxy) &&
           read(*object, "Path", handler.Path) && read(*object, "Text", handler.Text);
}

static bool read(const json::value& value, WebServerConfigJSON& server) {
    const auto* const object = value.if_object();
    return object != nullptr && read(*object, "Handlers", server.Handlers);
}

static bool read(const json::value& value, ServeConfigFgJSON& config) {
    const auto* const object = value.if_object();
    return object != nullptr && read(*object, "TCP", config.TCP) &&
           read(*object, "Web", config.Web) && read(*object, "AllowFunnel", config.AllowFunnel);
}

std::optional<ServeConfigJSON> decodeServeConfig(std::string_view document) {
    static constexpr std::array<std::string_view, 4> keys{"TCP", "Web", "AllowFunnel",
                                                          "Foreground"};
    const auto members = parseMembers(document, keys);
    ServeConfigJSON config;
    if (!members || !read(*members, keys[0], config.TCP) || !read(*members, keys[1], config.Web) ||
        !read(*members, keys[2], config.AllowFunnel) || !read(*members, keys[3], config.Foreground))
        return std::nullopt;
    return config;
}

} // namespace brevane
