// SPDX-License-Identifier: MIT
#include "TailscaleStatusJSON.h"

#include "JsonDecoding.h"
#include "JsonScan.h"

#include <boost/json/parse.hpp>

namespace brevane {

namespace json = boost::json;

static bool read(const json::value& value, TailscaleStatusJSON::SelfNode& node) {
    const auto* const object = value.if_object();
    return object != nullptr && read(*object, "DNSName", node.DNSName) &&
           read(*object, "TailscaleIPs", node.TailscaleIPs) &&
           read(*object, "Online", node.Online) && read(*object, "HostName", node.HostName);
}

namespace {

/// Builds the value that a part of a document stands for and reads it.
template <class Value>
bool readText(std::string_view text, Value& field) {
    boost::system::error_code error;
    const json::value value = json::parse(text, error, {}, strictJson());
    return !error && read(value, field);
}

/// Whether a key, as it is written with its quotes, is this name.
bool isKey(std::string_view written, std::string_view name) {
    if (!written.contains('\\')) return written.substr(1, written.size() - 2) == name;
    std::string key;
    return readText(written, key) && key == name;
}

} // namespace

std::optional<TailscaleStatusJSON> decodeTailscaleStatus(std::string_view document) {
    std::string_view backendState = "null";
    std::string_view self = "null";
    const auto keepWanted = [&](std::string_view key, std::string_view value) {
        if (isKey(key, "BackendState")) backendState = value;
        if (isKey(key, "Self")) self = value;
    };
    if (!scanJsonObject(document, keepWanted)) return std::nullopt;

    TailscaleStatusJSON status;
    if (!readText(backendState, status.BackendState) || !readText(self, status.selfNode))
        return std::nullopt;
    return status;
}

} // namespace brevane
