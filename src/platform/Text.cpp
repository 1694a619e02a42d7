// SPDX-License-Identifier: MIT
#include "Text.h"

#include <algorithm>
#include <array>
#include <span>

namespace brevane {

namespace {

// Line breaks come first; `whitespace` is the rest.
constexpr std::array<std::string_view, 25> whitespaceAndNewlines{
    "\n",     "\v",     "\f",     "\r",     "\u0085", "\u2028", "\u2029", //
    " ",      "\t",     "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
    "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000"};
constexpr auto whitespace = std::span(whitespaceAndNewlines).subspan<7>();

// UTF-8 is self-synchronising: a match of bytes at either end is always a match of whole
// characters.
std::string_view trimmed(std::string_view text, std::span<const std::string_view> characters) {
    const auto startsText = [&text](std::string_view character) {
        return text.starts_with(character);
    };
    const auto endsText = [&text](std::string_view character) { return text.ends_with(character); };
    for (auto found = characters.begin();
         (found = std::ranges::find_if(characters, startsText)) != characters.end();)
        text.remove_prefix(found->size());
    for (auto found = characters.begin();
         (found = std::ranges::find_if(characters, endsText)) != characters.end();)
        text.remove_suffix(found->size());
    return text;
}

unsigned char byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<unsigned char>(bytes[index]);
}

// Length of the well-formed sequence at the front (RFC 3629, section 4), 0 if there is none.
std::size_t sequenceLength(std::string_view bytes) {
    const unsigned char first = byteAt(bytes, 0);
    if (first < 0x80) return 1;

    const std::size_t length = first < 0xC2   ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    if (length == 0 || bytes.size() < length) return 0;

    const unsigned char second = byteAt(bytes, 1);
    const unsigned char lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned char highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (second < lowest || second > highest) return 0;

    const auto continues = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
    };
    return std::ranges::all_of(bytes.substr(2, length - 2), continues) ? length : 0;
}

} // namespace

bool isUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = sequenceLength(bytes);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string_view trimmedOfWhitespaceAndNewlines(std::string_view text) {
    return trimmed(text, whitespaceAndNewlines);
}

std::string_view trimmedOfWhitespace(std::string_view text) {
    return trimmed(text, whitespace);
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (; count > 0 && end < text.size(); --count)
        end += std::max<std::size_t>(sequenceLength(text.substr(end)), 1);
    return text.substr(0, end);
}

std::string utf8FromLatin1(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto character = static_cast<unsigned char>(byte);
        if (character < 0x80) {
            text += byte;
        } else {
            text += static_cast<char>(0xC0 | character >> 6);
            text += static_cast<char>(0x80 | (character & 0x3F));
        }
    }
    return text;
}

} // namespace brevane
