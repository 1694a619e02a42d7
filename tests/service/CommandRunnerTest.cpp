// SPDX-License-Identifier: MIT
#include "CommandRunner.h"

#include "UserAccount.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace brevane::test {
namespace {

class CommandRunnerTest : public testing::Test {
protected:
    CommandRunner runner{{.tailscaleBin = "tailscale",
                          .shell = "/bin/zsh",
                          .searchPath = "/usr/local/bin:/usr/bin:/bin:/not-there"}};
};

TEST_F(CommandRunnerTest, JoinsStandardOutputAndStandardErrorAndTrims) {
    EXPECT_EQ(runner.runShell("echo abc; echo warn >&2"), "abc\nwarn");
}

TEST_F(CommandRunnerTest, BlankLinesAreTheEmptyTextWithStatusZero) {
    const auto result = runner.runShellWithCode("printf '\\n \\n\\t\\n'");
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.status, 0);
}

TEST_F(CommandRunnerTest, StandardErrorAloneIsTheOutput) {
    EXPECT_EQ(runner.runShell("echo '  oh  ' >&2"), "oh");
}

TEST_F(CommandRunnerTest, AFailureWithoutOutputIsTheEmptyTextWithItsStatus) {
    const auto result = runner.runShellWithCode("exit 1");
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.status, 1);
}

TEST_F(CommandRunnerTest, AShellThatCannotBeLaunchedIsStatusMinusOne) {
    const CommandRunner broken{
        {.tailscaleBin = "t", .shell = "/not/a/shell", .searchPath = "/bin"}};
    const auto result = broken.runShellWithCode("echo abc");
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(broken.runShell("echo abc"), "");
}

TEST_F(CommandRunnerTest, AMissingExecutableIsTheShellsOwnError) {
    const auto result = runner.runShellWithCode("/not/there/tailscale status --json");
    EXPECT_NE(result.output.find("no such file or directory: /not/there/tailscale"),
              std::string::npos)
        << result.output;
    EXPECT_EQ(result.status, 127);
}

TEST_F(CommandRunnerTest, StandardInputIsAtItsEnd) {
    EXPECT_EQ(runner.runShell("cat; echo end"), "end");
}

TEST_F(CommandRunnerTest, ThePathIsTheSearchPathWhateverTheApplicationHas) {
    ::setenv("PATH", "/somewhere/else:/usr/bin:/bin", 1);
    EXPECT_EQ(runner.runShell("echo $PATH"), "/usr/local/bin:/usr/bin:/bin:/not-there");
}

TEST_F(CommandRunnerTest, HomeIsTheUsersHomeWhateverTheEnvironmentSays) {
    ::setenv("HOME", "/wrong", 1);
    EXPECT_EQ(runner.runShell("echo $HOME"), homeDirectory());
}

TEST_F(CommandRunnerTest, OtherVariablesReachTheCommand) {
    ::setenv("BREVANE_TEST_VARIABLE", "a b=c", 1);
    EXPECT_EQ(runner.runShell("echo $BREVANE_TEST_VARIABLE"), "a b=c");
}

TEST_F(CommandRunnerTest, AStreamThatIsNotUtf8IsEmptyAndTheOtherIsKept) {
    EXPECT_EQ(runner.runShell("printf '\\377abc'; echo warn >&2"), "warn");
    EXPECT_EQ(runner.runShell("echo abc; printf '\\377' >&2"), "abc");
}

TEST_F(CommandRunnerTest, AnOutputOf100MegabytesArrivesWhole) {
    EXPECT_EQ(runner.runShell("head -c 100000000 /dev/zero | tr '\\0' x").size(), 100'000'000u);
}

TEST_F(CommandRunnerTest, AfterAnInterruptNoCommandIsStarted) {
    runner.interrupt();
    EXPECT_EQ(runner.runShellWithCode("exit 0").status, -1);
    EXPECT_EQ(runner.runShellWithCode("exit 0").status, -1);
}

} // namespace
} // namespace brevane::test
