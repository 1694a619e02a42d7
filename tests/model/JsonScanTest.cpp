// SPDX-License-Identifier: MIT
#include "BadDocuments.h"
#include "JsonMembers.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>

using namespace brevane;
using namespace brevane::test;

namespace {

bool isObjectToBoost(std::string_view document) {
    return !boostError(document);
}

/// Calls `use` with every sequence of `length` pieces.
template <std::size_t Size, class Use>
void forEverySequence(const std::array<std::string_view, Size>& pieces, int length, const Use& use,
                      const std::string& begun = {}) {
    if (length == 0) return use(begun);
    for (const std::string_view piece : pieces)
        forEverySequence(pieces, length - 1, use, begun + std::string(piece));
}

} // namespace

TEST(ScanJsonObject, TellsOfMembersInOrderAsTheyAreWritten) {
    EXPECT_EQ(membersOf("{}"), Members{});
    EXPECT_EQ(membersOf(" { } "), Members{});
    EXPECT_EQ(membersOf("{ \"a\" : [ 1 , {\"b\":2} ] ,\n\"\\u0061\":\"\\\"\", \"a\":-1.5e3 }\n"),
              (Members{{R"("a")", R"([ 1 , {"b":2} ])"},
                       {R"("\u0061")", R"("\"")"},
                       {R"("a")", "-1.5e3"}}));
}

TEST(ScanJsonObject, RefusesBadDocuments) {
    for (const auto& [what, document] : test::badDocuments(R"("a":1)"))
        EXPECT_FALSE(membersOf(document)) << what;
}

TEST(ScanJsonObject, TakesOddMembers) {
    for (const auto& [what, member] : test::oddMembers())
        EXPECT_TRUE(membersOf("{" + member + "}")) << what;
}

TEST(ScanJsonObject, ReadsNothingBehindTheDocument) {
    const std::string document =
        "{\"\\uD83D\\uDE00\":[true,-1.5e+7, \"eight bytes \xF0\x9F\x98\x80\"],\n        \"a\":{}}";
    ASSERT_TRUE(membersOf(document));
    for (std::size_t size = 0; size < document.size(); ++size)
        EXPECT_FALSE(membersOf(std::string_view(document).substr(0, size))) << size;
}

TEST(ScanJsonObject, CountsObjectsAndArraysAsNestingAlike) {
    std::string inside;
    std::string outside;
    for (int depth = 0; depth < 511; ++depth) {
        inside += depth % 2 == 0 ? "[" : "{\"k\":";
        outside.insert(0, depth % 2 == 0 ? "]" : "}");
    }
    EXPECT_TRUE(membersOf(R"({"a":)" + inside + "0" + outside + "}"));
    EXPECT_FALSE(membersOf(R"({"a":)" + inside + "{}" + outside + "}"));
    EXPECT_FALSE(membersOf(R"({"a":)" + inside + "[]" + outside + "}"));
}

TEST(ScanJsonObject, AgreesWithBoostOnEveryShortValue) {
    constexpr std::array<std::string_view, 18> pieces{"{",     "}", "[",  "]",  ":",    ",",
                                                      "\"a\"", " ", "0",  "1",  "-",    ".",
                                                      "e",     "+", "\\", "\"", "null", "\n"};
    for (int length = 0; length <= 4; ++length)
        forEverySequence(pieces, length, [](const std::string& value) {
            const std::string document = R"({"":)" + value + "}";
            ASSERT_EQ(membersOf(document).has_value(), isObjectToBoost(document)) << value;
        });
}

TEST(ScanJsonObject, AgreesWithBoostOnEveryKindOfByteInAString) {
    // The first and last byte of each range that a UTF-8 sequence tells apart.
    constexpr std::array<std::string_view, 26> bytes{
        "\x1F", " ",    "\"",   "\\",   "\x7F", "\x80", "\x8F", "\x90", "\x9F",
        "\xA0", "\xBF", "\xC1", "\xC2", "\xDF", "\xE0", "\xE1", "\xEC", "\xED",
        "\xEE", "\xEF", "\xF0", "\xF1", "\xF3", "\xF4", "\xF5", "\xFF"};
    for (int length = 1; length <= 4; ++length)
        forEverySequence(bytes, length, [](const std::string& text) {
            // At every place within eight bytes, in turn.
            const std::string document = R"({"":")" + std::string(text[0] & 7, 'a') + text + "\"}";
            ASSERT_EQ(membersOf(document).has_value(), isObjectToBoost(document)) << document;
        });
}

TEST(ScanJsonObject, AgreesWithBoostOnEveryKindOfEscape) {
    constexpr std::array<std::string_view, 19> units{
        R"(\u0000)", R"(\uD7FF)", R"(\uD800)", R"(\udbff)", R"(\uDC00)", R"(\udFFf)", R"(\uE000)",
        R"(\uFFFF)", R"(\u12)",   R"(\u123G)", R"(\u-123)", R"(\u+123)", R"(\u 123)", R"(\u0x1)",
        R"(\u12G4)", R"(\u)",     R"(\U0041)", "DC00",      R"(\n)"};
    for (int length = 1; length <= 3; ++length)
        forEverySequence(units, length, [](const std::string& text) {
            const std::string document = R"({"":")" + text + "\"}";
            ASSERT_EQ(membersOf(document).has_value(), isObjectToBoost(document)) << document;
        });
    for (int byte = 0; byte < 256; ++byte) {
        const std::string document = std::string(R"({"":"\)") + static_cast<char>(byte) + "\"}";
        EXPECT_EQ(membersOf(document).has_value(), isObjectToBoost(document)) << byte;
    }
}
