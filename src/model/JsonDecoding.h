// SPDX-License-Identifier: MIT
#pragma once

#include "ServeConfigJSON.h"

#include <boost/json/object.hpp>
#include <boost/json/parse_options.hpp>
#include <boost/json/value.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// How the daemon's documents become records, for the two decoders only. Every `read` gives false,
// and with it the whole document up, where a value is of another type than the record wants.
namespace brevane {

/// Strict JSON (RFC 8259), nested up to 512 deep.
[[nodiscard]] boost::json::parse_options strictJson();

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

/// An optional member: missing and null leave the field empty.
template <class Value>
[[nodiscard]] bool read(const boost::json::object& object, std::string_view key,
                        std::optional<Value>& field) {
    const auto* const value = object.if_contains(key);
    return value == nullptr || read(*value, field);
}

} // namespace brevane
