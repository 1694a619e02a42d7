// SPDX-License-Identifier: MIT
#include "CommandLine.h"

#include <gtest/gtest.h>

#include <vector>

namespace brevane::test {
namespace {

std::optional<CommandLineAnswer> answer(const std::vector<std::string_view>& arguments) {
    return answerCommandLine(arguments);
}

TEST(AnswerCommandLine, WithoutArgumentsTheWindowOpens) {
    EXPECT_FALSE(answer({}));
}

TEST(AnswerCommandLine, VersionIsTheOneOfTheBuild) {
    const auto version = answer({"--version"});
    ASSERT_TRUE(version);
    EXPECT_EQ(version->text, "brevane " + std::string(buildVersion()) + "\n");
    EXPECT_EQ(version->status, 0);
    EXPECT_FALSE(buildVersion().empty());
}

TEST(AnswerCommandLine, HelpNamesEveryOption) {
    const auto help = answer({"--help"});
    ASSERT_TRUE(help);
    EXPECT_EQ(help->status, 0);
    EXPECT_TRUE(help->text.starts_with("Usage: brevane"));
    EXPECT_TRUE(help->text.contains("--version"));
    EXPECT_TRUE(help->text.contains("--help"));
}

TEST(AnswerCommandLine, AWrongOptionIsNamedAndAnsweredWithUsage) {
    for (const std::string_view wrong : {"--verbose", "-v", "--version=1", "file", "", "-"}) {
        const auto refusal = answer({wrong});
        ASSERT_TRUE(refusal) << wrong;
        EXPECT_EQ(refusal->status, 2);
        EXPECT_TRUE(
            refusal->text.starts_with("brevane: unknown option '" + std::string(wrong) + "'"));
        EXPECT_TRUE(refusal->text.contains("Usage: brevane"));
    }
}

TEST(AnswerCommandLine, TheSessionManagersPairIsLetThrough) {
    EXPECT_FALSE(answer({"-session", "1011dd2_1700000000_1"}));
    EXPECT_EQ(answer({"-session", "1", "--wrong"})->status, 2);
    EXPECT_EQ(answer({"-session"})->status, 2);
}

} // namespace
} // namespace brevane::test
