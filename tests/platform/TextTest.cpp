// SPDX-License-Identifier: MIT
#include "Text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace brevane::test {
namespace {

// Encodes any number up to 0x1FFFFF in the layout of UTF-8, even if it is not a character.
std::string encoded(std::uint32_t number) {
    const auto byte = [](std::uint32_t value) { return static_cast<char>(value); };
    const auto tail = [&](int shift, std::uint32_t value) {
        return byte(0x80 | (value >> shift & 0x3F));
    };
    if (number < 0x80) return {byte(number)};
    if (number < 0x800) return {byte(0xC0 | number >> 6), tail(0, number)};
    if (number < 0x10000) return {byte(0xE0 | number >> 12), tail(6, number), tail(0, number)};
    return {byte(0xF0 | number >> 18), tail(12, number), tail(6, number), tail(0, number)};
}

bool isSpaceSeparator(std::uint32_t character) {
    return character == 0x20 || character == 0xA0 || character == 0x1680 ||
           (character >= 0x2000 && character <= 0x200A) || character == 0x202F ||
           character == 0x205F || character == 0x3000;
}

bool isLineBreak(std::uint32_t character) {
    return (character >= 0x0A && character <= 0x0D) || character == 0x85 || character == 0x2028 ||
           character == 0x2029;
}

TEST(IsUtf8, AcceptsEveryScalarValueAndNoOther) {
    for (std::uint32_t number = 0; number <= 0x1FFFFF; ++number) {
        const bool scalar = number <= 0x10FFFF && (number < 0xD800 || number > 0xDFFF);
        ASSERT_EQ(isUtf8(encoded(number)), scalar) << std::hex << number;
    }
}

TEST(IsUtf8, AcceptsTheEmptyTextAndNul) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8(std::string_view("\0", 1)));
}

TEST(IsUtf8, RefusesOverlongForms) {
    EXPECT_FALSE(isUtf8("\xC0\x80"));
    EXPECT_FALSE(isUtf8("\xC1\xBF"));
    EXPECT_FALSE(isUtf8("\xE0\x9F\xBF"));
    EXPECT_FALSE(isUtf8("\xF0\x8F\xBF\xBF"));
}

TEST(IsUtf8, RefusesSequencesThatAreCutOffOrOutOfPlace) {
    EXPECT_FALSE(isUtf8("\x80"));
    EXPECT_FALSE(isUtf8("a\xBF"));
    EXPECT_FALSE(isUtf8("\xC3"));
    EXPECT_FALSE(isUtf8("\xC3z"));
    EXPECT_FALSE(isUtf8("\xE2\x82"));
    EXPECT_FALSE(isUtf8("\xE2\x82z"));
    EXPECT_FALSE(isUtf8("\xF0\x9F\x98"));
    EXPECT_FALSE(isUtf8("\xF0\x9F\x98z"));
    EXPECT_FALSE(isUtf8("\xF0\x9Fzz"));
    EXPECT_FALSE(isUtf8("\xFF\xFE"));
}

TEST(Trimming, RemovesExactlyTheCharactersOfItsSet) {
    for (std::uint32_t number = 0; number <= 0x10FFFF; ++number) {
        const std::string character = encoded(number);
        const std::string text = character + "x" + character;
        const bool blank = isSpaceSeparator(number) || number == 0x09;
        ASSERT_EQ(trimmedOfWhitespace(text), blank ? "x" : text) << std::hex << number;
        ASSERT_EQ(trimmedOfWhitespaceAndNewlines(text), blank || isLineBreak(number) ? "x" : text)
            << std::hex << number;
    }
}

TEST(Trimming, KeepsWhatIsInside) {
    EXPECT_EQ(trimmedOfWhitespaceAndNewlines("\n\n abc\n \twarn\r\n"), "abc\n \twarn");
    EXPECT_EQ(trimmedOfWhitespace("\t a \u3000 b \u2003"), "a \u3000 b");
}

TEST(Trimming, LeavesNothingOfATextOfBlanks) {
    EXPECT_EQ(trimmedOfWhitespaceAndNewlines(""), "");
    EXPECT_EQ(trimmedOfWhitespaceAndNewlines("\n \u2028\t\u00A0"), "");
    EXPECT_EQ(trimmedOfWhitespace(" \t "), "");
}

TEST(Trimming, OfWhitespaceStopsAtALineBreak) {
    EXPECT_EQ(trimmedOfWhitespace(" 3000 \n"), "3000 \n");
    EXPECT_EQ(trimmedOfWhitespace("\n 3000 "), "\n 3000");
}

TEST(Trimming, LeavesBytesThatAreNotUtf8) {
    EXPECT_EQ(trimmedOfWhitespaceAndNewlines(" \xA0 "), "\xA0");
    EXPECT_EQ(trimmedOfWhitespaceAndNewlines(" \x85\xE2\x80 "), "\x85\xE2\x80");
    EXPECT_EQ(trimmedOfWhitespaceAndNewlines("\xE2\x80\u2028\x80\xA8"), "\xE2\x80\u2028\x80\xA8");
}

TEST(FirstCharacters, CountsScalarValuesAndCutsNone) {
    EXPECT_EQ(firstCharacters("abc", 2), "ab");
    EXPECT_EQ(firstCharacters("äöü", 2), "äö");
    EXPECT_EQ(firstCharacters("€😀x", 2), "€😀");
    EXPECT_EQ(firstCharacters("e\u0301x", 2), "e\u0301") << "a combining mark is a character";
}

TEST(FirstCharacters, GivesAllOfAShorterText) {
    EXPECT_EQ(firstCharacters("abc", 3), "abc");
    EXPECT_EQ(firstCharacters("abc", 200), "abc");
    EXPECT_EQ(firstCharacters("", 200), "");
    EXPECT_EQ(firstCharacters("abc", 0), "");
}

TEST(FirstCharacters, CountsABadByteAsOneCharacter) {
    EXPECT_EQ(firstCharacters("\xFF\xFE!", 2), "\xFF\xFE");
    EXPECT_EQ(firstCharacters("\xE2\x82", 1), "\xE2");
    EXPECT_EQ(firstCharacters("\xF0\x9F\x98 x", 4), "\xF0\x9F\x98 ");
}

TEST(Utf8FromLatin1, KeepsAsciiAndWidensTheRest) {
    EXPECT_EQ(utf8FromLatin1("plain"), "plain");
    EXPECT_EQ(utf8FromLatin1("caf\xE9"), "café");
    EXPECT_EQ(utf8FromLatin1(std::string_view("\0\x7F\x80\xBF\xC0\xFF", 6)),
              std::string_view("\0\x7F\u0080\u00BF\u00C0\u00FF", 10));
}

TEST(Utf8FromLatin1, GivesUtf8ForEveryByte) {
    for (std::uint32_t byte = 0; byte < 0x100; ++byte)
        EXPECT_EQ(utf8FromLatin1(std::string(1, static_cast<char>(byte))), encoded(byte));
}

} // namespace
} // namespace brevane::test
