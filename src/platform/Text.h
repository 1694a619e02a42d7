// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brevane {

// Text is UTF-8, a character is a Unicode scalar value, and none is ever split. Each byte that is
// not valid UTF-8 counts as one character, never as white space.

/// Whether the bytes are well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates).
[[nodiscard]] bool isUtf8(std::string_view bytes);

/// The text without leading and trailing white space and line breaks: general categories Zs, Zl and
/// Zp, U+0009 to U+000D and U+0085.
[[nodiscard]] std::string_view trimmedOfWhitespaceAndNewlines(std::string_view text);

/// The text without leading and trailing white space: general category Zs and U+0009; line breaks
/// stay.
[[nodiscard]] std::string_view trimmedOfWhitespace(std::string_view text);

/// The first `count` characters, or the whole text if it is shorter.
[[nodiscard]] std::string_view firstCharacters(std::string_view text, std::size_t count);

/// Converts ISO 8859-1 to UTF-8.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);

} // namespace brevane
