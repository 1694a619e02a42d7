// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

#include "ChildProgram.h"
#include "TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace brevane::test {
namespace {

TEST(ChildProcess, GivesBothOutputsApart) {
    const auto outcome = run(shell("echo abc; echo warn >&2"));
    EXPECT_EQ(outcome.standardOutput, "abc\n");
    EXPECT_EQ(outcome.standardError, "warn\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(ChildProcess, KeepsBytesAsTheyAre) {
    const auto outcome = run(shell(R"(printf 'a\000b\377\n\n')"));
    EXPECT_EQ(outcome.standardOutput, std::string("a\0b\xFF\n\n", 6));
}

TEST(ChildProcess, PassesArgumentsUntouched) {
    const std::vector<std::string> arguments{"arguments", "", "a b", "'\"^! $PATH `id` \\ *",
                                             "ü\xFF"};
    std::string expected = CHILD_PROGRAM "\n";
    for (const std::string& argument : arguments)
        expected += argument + '\n';
    EXPECT_EQ(run(child(arguments)).standardOutput, expected);
}

TEST(ChildProcess, HasExactlyTheGivenEnvironment) {
    EXPECT_EQ(run(child({"environment"}, {"PATH=/x", "EMPTY=", "A=b=c d"})).standardOutput,
              "PATH=/x\nEMPTY=\nA=b=c d\n");
}

TEST(ChildProcess, ReadsTheEndOfInputAtOnce) {
    EXPECT_EQ(run(child({"input"})).standardOutput, "0");
}

TEST(ChildProcess, LeadsASessionOfItsOwn) {
    EXPECT_EQ(run(child({"session"})).standardOutput, "own");
}

TEST(ChildProcess, InheritsNoDescriptor) {
    const int file = open("/dev/null", O_RDONLY);
    const int high = fcntl(file, F_DUPFD, 1000);
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    ASSERT_NE(high, -1);
    EXPECT_EQ(run(child({"descriptors"})).standardOutput, "0 1 2 ");
    for (const int descriptor : {file, high, pipe[0], pipe[1]})
        close(descriptor);
}

TEST(ChildProcess, StartsWithAClearMaskAndDefaultDispositions) {
    const auto pipeBefore = signal(SIGPIPE, SIG_IGN);
    const auto interruptBefore = signal(SIGINT, SIG_IGN);
    sigset_t all;
    sigset_t maskBefore;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &maskBefore);
    const auto outcome = run(child({"signals"}));
    pthread_sigmask(SIG_SETMASK, &maskBefore, nullptr);
    signal(SIGPIPE, pipeBefore);
    signal(SIGINT, interruptBefore);
    EXPECT_EQ(outcome.standardOutput, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(ChildProcess, ReportsEveryExitStatusExactly) {
    for (int status = 0; status < 256; ++status)
        EXPECT_EQ(run(child({"exit", std::to_string(status)})).status, status);
}

TEST(ChildProcess, ReportsTheSignalThatEndedIt) {
    for (const int signal : {SIGHUP, SIGKILL, SIGTERM, SIGPIPE, SIGUSR1})
        EXPECT_EQ(run(child({"signal", std::to_string(signal)})).status, signal);
}

TEST(ChildProcess, Drains20MBOnEachOutputAtTheSameTime) {
    constexpr std::size_t size = 20'000'000;
    const auto outcome = run(child({"flood", std::to_string(size)}));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.standardOutput == std::string(size, 'o'));
    EXPECT_TRUE(outcome.standardError == std::string(size, 'e'));
}

TEST(ChildProcess, IsWaitedForAfterItHasClosedItsOutputs) {
    EXPECT_EQ(run(child({"end-after-closing-outputs"})).status, 5);
}

TEST(ChildProcess, IsWaitedForAsLongAsAGrandchildHoldsAnOutput) {
    const auto outcome = run(child({"late"}));
    EXPECT_EQ(outcome.standardOutput, "late");
    EXPECT_EQ(outcome.status, 3);
}

TEST(ChildProcess, ThatIsMissingGivesAnError) {
    const Interrupt interrupt;
    ChildProcess missing = child({});
    missing.executable = "/nonexistent/zsh";
    EXPECT_EQ(missing.run(interrupt).error(), std::errc::no_such_file_or_directory);
    missing.executable = "";
    EXPECT_EQ(missing.run(interrupt).error(), std::errc::no_such_file_or_directory);
    EXPECT_TRUE(hasNoChild());
}

TEST(ChildProcess, ThatMayNotBeExecutedGivesAnError) {
    const Interrupt interrupt;
    const TemporaryFolder folder;
    std::ofstream(folder / "plain") << "text";
    ChildProcess refused = child({});
    refused.executable = folder / "plain";
    EXPECT_EQ(refused.run(interrupt).error(), std::errc::permission_denied);
    refused.executable = folder.path;
    EXPECT_EQ(refused.run(interrupt).error(), std::errc::permission_denied);
}

TEST(ChildProcess, WithAnArgumentBeyondTheSystemsLimitGivesAnError) {
    const Interrupt interrupt;
    const ChildProcess process = child({"arguments", std::string(50'000'000, 'x')});
    EXPECT_EQ(process.run(interrupt).error(), std::errc::argument_list_too_long);
}

TEST(ChildProcess, LeavesOtherChildrenToOthers) {
    const pid_t other = fork();
    if (other == 0) _exit(9);
    EXPECT_EQ(run(child({"exit", "4"})).status, 4);
    int status = 0;
    ASSERT_EQ(waitpid(other, &status, 0), other);
    EXPECT_EQ(WEXITSTATUS(status), 9);
}

TEST(ChildProcess, CanBeRunFromManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    std::array<int, 8> wrong{};
    for (std::size_t i = 0; i < wrong.size(); ++i)
        threads.emplace_back([i, &wrong] {
            const auto text = std::to_string(i);
            for (int repetition = 0; repetition < 20; ++repetition) {
                const auto outcome = run(shell("echo " + text + "; exit " + text));
                if (outcome.standardOutput != text + "\n" || outcome.status != static_cast<int>(i))
                    ++wrong[i];
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, (std::array<int, 8>{}));
    EXPECT_TRUE(hasNoChild());
}

} // namespace
} // namespace brevane::test
