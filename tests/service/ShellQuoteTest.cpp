// SPDX-License-Identifier: MIT
#include "CommandBuilding.h"

#include <gtest/gtest.h>

#include <string>

namespace brevane::test {
namespace {

TEST(ShellQuote, LeavesAPlainWordAlone) {
    EXPECT_EQ(shellQuote("OK"), "OK");
}

TEST(ShellQuote, AddsNoQuotesToTheEmptyText) {
    EXPECT_EQ(shellQuote(""), "");
}

TEST(ShellQuote, QuotesEachOfTheFiveCharacters) {
    EXPECT_EQ(shellQuote("hello world"), "'hello world'");
    EXPECT_EQ(shellQuote("a&b"), "'a&b'");
    EXPECT_EQ(shellQuote("(a"), "'(a'");
    EXPECT_EQ(shellQuote("a)"), "'a)'");
    EXPECT_EQ(shellQuote("it's"), R"('it'\''s')");
}

TEST(ShellQuote, LeavesEveryOtherSpecialCharacterToTheShell) {
    for (const std::string text :
         {"x;y", "$HOME", "`id`", "\"", "|", "<", ">", "*", "?", "\\", "a\tb", "a\nb"})
        EXPECT_EQ(shellQuote(text), text);
}

} // namespace
} // namespace brevane::test
