// SPDX-License-Identifier: MIT
#include "ServeConfigJSON.h"

#include "JsonDecoding.h"

#include <boost/json/parse.hpp>

namespace brevane {

namespace json = boost::json;

// Found by the templates of JsonDecoding.h through their record's namespace.

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

static bool read(const json::value& value, ServeConfigJSON& config) {
    const auto* const object = value.if_object();
    return object != nullptr && read(*object, "TCP", config.TCP) &&
           read(*object, "Web", config.Web) && read(*object, "AllowFunnel", config.AllowFunnel) &&
           read(*object, "Foreground", config.Foreground);
}

std::optional<ServeConfigJSON> decodeServeConfig(std::string_view document) {
    boost::system::error_code error;
    const json::value value = json::parse(document, error, {}, strictJson());
    ServeConfigJSON config;
    if (error || !read(value, config)) return std::nullopt;
    return config;
}

} // namespace brevane
