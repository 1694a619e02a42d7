// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brevane {

// Text is UTF-8 throughout, a character is a Unicode scalar value, and none is ever cut in half.
// Bytes that are not UTF-8 count as one character each and are never white space.

/// Whether the bytes are well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates).
[[nodiscard]] bool isUtf8(std::string_view bytes);

/// The text without white space and line breaks at its ends: general categories Zs, Zl and Zp,
/// U+0009 to U+000D and U+0085.
[[nodiscard]] std::string_view trimmedOfWhitespaceAndNewlines(std::string_view text);

/// The text without white space at its ends: general category Zs and U+0009; line breaks stay.
[[nodiscard]] std::string_view trimmedOfWhitespace(std::string_view text);

/// The first `count` characters, or all of a shorter text.
[[nodiscard]] std::string_view firstCharacters(std::string_view text, std::size_t count);

/// ISO 8859-1 bytes as UTF-8.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);

} // namespace brevane
