// SPDX-License-Identifier: MIT
#include "BadDocuments.h"
#include "JsonDecoding.h"

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace brevane::test {

namespace json = boost::json;

namespace {

constexpr std::array<std::string_view, 2> wanted{"a", "b"};

/// The wanted members of a document in a buffer of exactly its size, so that sanitizers find reads
/// beyond it.
std::optional<json::object> membersOf(std::string_view document) {
    const std::vector<char> exact(document.begin(), document.end());
    return parseMembers({exact.data(), exact.size()}, wanted);
}

TEST(ParseMembers, ReturnsTheWantedMembersOfTheOutermostObject) {
    EXPECT_EQ(membersOf("{}"), json::object());
    EXPECT_EQ(membersOf(R"( {"c":{"a":1},"a":[{"a":"x\ny","b":[]},-1.5e3,18446744073709551615],)"
                        R"("d":[{"b":2}],"b":{"c":null,"a":true}} )"),
              json::parse(R"({"a":[{"a":"x\ny","b":[]},-1.5e3,18446744073709551615],)"
                          R"("b":{"c":null,"a":true}})"));
}

TEST(ParseMembers, ComparesKeysWithTheirEscapesUndone) {
    EXPECT_EQ(membersOf(R"({"\u0061":1,"\\u0062":2,"a\u0000":3,"A":4})"),
              json::parse(R"({"a":1})"));
}

TEST(ParseMembers, TakesTheLastOfARepeatedKey) {
    EXPECT_EQ(membersOf(R"({"a":[1,2],"b":1,"a":{"x":1,"x":2}})"),
              json::parse(R"({"b":1,"a":{"x":2}})"));
}

TEST(ParseMembers, RefusesDocumentsThatAreNoObject) {
    for (const std::string_view document :
         {"", " ", "null", "true", "0", "-1", "18446744073709551615", "1.5", R"("a")", "[]",
          R"([{"a":1}])"})
        EXPECT_FALSE(membersOf(document)) << document;
}

TEST(ParseMembers, RefusesBadDocuments) {
    for (const auto& [what, document] : badDocuments(R"("a":1)"))
        EXPECT_FALSE(membersOf(document)) << what;
}

TEST(ParseMembers, SkipsOddMembers) {
    for (const auto& [what, member] : oddMembers())
        EXPECT_EQ(membersOf("{" + member + R"(,"a":1})"), json::parse(R"({"a":1})")) << what;
}

TEST(ParseMembers, BuildsOddValues) {
    for (const auto& [what, member] : oddMembers()) {
        json::parse_options deep;
        deep.max_depth = 1000;
        EXPECT_EQ(membersOf(R"({"a":{)" + member + "}}").has_value(), what != "nested 512 deep")
            << what;
        if (what == "nested 512 deep") continue;
        EXPECT_EQ(membersOf(R"({"a":{)" + member + "}}"),
                  json::parse(R"({"a":{)" + member + "}}", {}, deep))
            << what;
    }
}

TEST(ParseMembers, RefusesADocumentThatIsCutAnywhere) {
    const std::string document =
        "{\"\\uD83D\\uDE00\":[true,-1.5e+7, \"eight bytes \xF0\x9F\x98\x80\"],\n        \"a\":{}}";
    ASSERT_TRUE(membersOf(document));
    for (std::size_t size = 0; size < document.size(); ++size)
        EXPECT_FALSE(membersOf(std::string_view(document).substr(0, size))) << size;
}

TEST(ParseMembers, CountsObjectsAndArraysAsNestingAlike) {
    std::string inside;
    std::string outside;
    for (int depth = 0; depth < 511; ++depth) {
        inside += depth % 2 == 0 ? "[" : "{\"k\":";
        outside.insert(0, depth % 2 == 0 ? "]" : "}");
    }
    for (const std::string_view key : {"a", "skipped"}) {
        const std::string begin = "{\"" + std::string(key) + "\":" + inside;
        EXPECT_TRUE(membersOf(begin + "0" + outside + "}")) << key;
        EXPECT_FALSE(membersOf(begin + "{}" + outside + "}")) << key;
        EXPECT_FALSE(membersOf(begin + "[]" + outside + "}")) << key;
    }
}

TEST(ParseMembers, ANumberTooLargeToHoldFailsWhereverItStands) {
    EXPECT_FALSE(membersOf(R"({"a":1e400})"));
    EXPECT_FALSE(membersOf(R"({"skipped":-1e400})"));
    EXPECT_FALSE(membersOf(R"({"a":1e99999999999})"));
    EXPECT_FALSE(membersOf(R"({"skipped":1e99999999999})"));
}

} // namespace
} // namespace brevane::test
