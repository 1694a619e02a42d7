// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>
#include <utility>

namespace brevane {

/// The text of each enumerator, in declaration order; it is also the label that the user sees.
/// Specialised next to each enumeration with an array `cases` of (enumerator, text).
template <class Enum>
struct RawValues;

/// The text of an enumerator.
template <class Enum>
[[nodiscard]] constexpr std::string_view rawValue(Enum value) {
    for (const auto& [known, text] : RawValues<Enum>::cases)
        if (known == value) return text;
    return {};
}

/// The enumerator with exactly this text (case-sensitive), or nullopt.
template <class Enum>
[[nodiscard]] constexpr std::optional<Enum> fromRawValue(std::string_view text) {
    for (const auto& [known, knownText] : RawValues<Enum>::cases)
        if (knownText == text) return known;
    return std::nullopt;
}

} // namespace brevane
