// SPDX-License-Identifier: MIT
#include "ShellQuote.h"

#include "ChildProcess.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <string>
#include <vector>

namespace brevane {
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

// What the shell hands on as the first argument, for each text.
std::vector<std::string> throughZsh(const std::vector<std::string>& texts) {
    const test::TemporaryFolder folder;
    std::string line;
    for (const std::string& text : texts)
        line += "printf '%s\\0' " + shellQuote(text) + ";";
    const ChildProcess shell{"/bin/zsh", {"-l", "-c", line}, {"PATH=/usr/bin:/bin", "HOME=/"}};
    const Interrupt never;
    const auto outcome = shell.run(never);

    std::vector<std::string> received;
    std::string word;
    for (const char character : outcome ? outcome->standardOutput : "") {
        if (character == '\0')
            received.push_back(std::exchange(word, ""));
        else
            word += character;
    }
    return received;
}

TEST(ShellQuote, WhatZshHandsOnOfAQuotedTextIsTheText) {
    // Every text holds one of the five characters, and so is quoted as a whole.
    const std::string alphabet = " ()&'$`\";|<>*?\\\t\n!#~={}[]^%aé€😀";
    EXPECT_TRUE(rc::check([&alphabet] {
        const auto texts = *rc::gen::container<std::vector<std::string>>(
            20, rc::gen::map(
                    rc::gen::pair(rc::gen::container<std::string>(rc::gen::elementOf(alphabet)),
                                  rc::gen::elementOf(std::string(" ()&'"))),
                    [](const std::pair<std::string, char>& drawn) {
                        return drawn.first + drawn.second;
                    }));
        RC_ASSERT(throughZsh(texts) == texts);
    }));
}

} // namespace
} // namespace brevane
