// SPDX-License-Identifier: MIT
#include "TailscaleStatusJSON.h"

#include "JsonDecoding.h"

#include <array>

namespace brevane {

namespace json = boost::json;

static bool read(const json::value& value, TailscaleStatusJSON::SelfNode& node) {
    const auto* const object = value.if_object();
    return object != nullptr && read(*object, "DNSName", node.DNSName) &&
           read(*object, "TailscaleIPs", node.TailscaleIPs) &&
           read(*object, "Online", node.Online) && read(*object, "HostName", node.HostName);
}

std::optional<TailscaleStatusJSON> decodeTailscaleStatus(std::string_view document) {
    static constexpr std::array<std::string_view, 2> keys{"BackendState", "Self"};
    const auto members = parseMembers(document, keys);
    const auto* const backendState = members ? members->if_contains(keys[0]) : nullptr;
    TailscaleStatusJSON status;
    if (backendState == nullptr || !read(*backendState, status.BackendState) ||
        !read(*members, keys[1], status.selfNode))
        return std::nullopt;
    return status;
}

} // namespace brevane
