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

// Shared by the decoders of the daemon's two documents, and by nothing else.
namespace brevane {

/// Parses a document that must be one JSON object (RFC 8259) in UTF-8, nested at most 512 deep, and
/// returns those of its members whose key is among `wanted`. All others are checked and skipped
/// without building them: the peers are nearly all of a large status document. The last of a
/// repeated key counts. Nothing on any other document, and on a number whose exponent does not fit
/// 32 bits, wherever it stands.
[[nodiscard]] std::optional<boost::json::object>
parseMembers(std::string_view document, std::span<const std::string_view> wanted);

// Each `read` returns false for a value of another type, which fails the whole document.

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
