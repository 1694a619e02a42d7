// SPDX-License-Identifier: MIT
#pragma once

#include "ServeConfigJSON.h"

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Internal to the decoders of the daemon's two documents.
namespace brevane {

/// Parses a document that must be one JSON object (RFC 8259) in UTF-8, nested at most 512 deep, and
/// returns the members whose keys are in `wanted`. The others are validated but not built: a large
/// status document consists almost entirely of peers. If a key is repeated, its last value counts.
/// Returns nullopt for any other document and for any number too large for a double.
[[nodiscard]] std::optional<boost::json::object>
parseMembers(std::string_view document, std::span<const std::string_view> wanted);

// Each `read` returns false if the value has the wrong type; the whole document is rejected then.

[[nodiscard]] bool read(const boost::json::value& value, std::string& text);
[[nodiscard]] bool read(const boost::json::value& value, bool& truth);
[[nodiscard]] bool read(const boost::json::value& value, std::vector<std::string>& list);

template <class Value>
[[nodiscard]] bool read(const boost::json::value& value, JsonMap<Value>& map) {
    const auto* const object = value.if_object();
    if (object == nullptr) return false;
    for (const auto& member : *object)
        if (!read(member.value(), map[member.key()])) return false;
    return true;
}

/// An optional value: null leaves the field empty.
template <class Value>
[[nodiscard]] bool read(const boost::json::value& value, std::optional<Value>& field) {
    return value.is_null() || read(value, field.emplace());
}

/// An optional member: if it is missing or null, the field stays empty.
template <class Value>
[[nodiscard]] bool read(const boost::json::object& object, std::string_view key,
                        std::optional<Value>& field) {
    const auto* const value = object.if_contains(key);
    return value == nullptr || read(*value, field);
}

} // namespace brevane
