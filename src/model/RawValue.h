// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>
#include <utility>

namespace brevane {

/// The text behind each case of an enumeration, in declaration order. The text is also the label
/// that the user sees. Specialised beside each enumeration as an array `cases` of (case, text).
template <class Enum>
struct RawValues;

/// The text of a case.
template <class Enum>
[[nodiscard]] constexpr std::string_view rawValue(Enum value) {
    for (const auto& [known, text] : RawValues<Enum>::cases)
        if (known == value) return text;
    return {};
}

/// The case with exactly this text (case-sensitive), or none.
template <class Enum>
[[nodiscard]] constexpr std::optional<Enum> fromRawValue(std::string_view text) {
    for (const auto& [known, knownText] : RawValues<Enum>::cases)
        if (knownText == text) return known;
    return std::nullopt;
}

} // namespace brevane
