// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

#include "TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <expected>
#include <fstream>
#include <future>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace brevane {
namespace {

using Result = std::expected<ChildProcess::Outcome, std::error_code>;

// The program of this folder, which tells of itself.
ChildProcess child(std::vector<std::string> arguments, std::vector<std::string> environment = {}) {
    return {.executable = CHILD_PROGRAM,
            .arguments = std::move(arguments),
            .environment = std::move(environment)};
}

ChildProcess::Outcome run(const ChildProcess& process) {
    const Interrupt interrupt;
    Result result = process.run(interrupt);
    if (!result) {
        ADD_FAILURE() << result.error().message();
        return {.standardOutput = "", .standardError = "", .status = -1};
    }
    return std::move(*result);
}

ChildProcess shell(std::string commandLine) {
    return {
        .executable = "/bin/sh", .arguments = {"-c", std::move(commandLine)}, .environment = {}};
}

int openDescriptors() {
    int count = 0;
    for (int descriptor = 0; descriptor < 4096; ++descriptor)
        count += fcntl(descriptor, F_GETFD) != -1 ? 1 : 0;
    return count;
}

bool hasNoChild() {
    return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}

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

TEST(ChildProcess, LeadsAProcessGroupOfItsOwn) {
    EXPECT_EQ(run(child({"group"})).standardOutput, "own");
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
    std::ofstream(folder.path() / "plain") << "text";
    ChildProcess refused = child({});
    refused.executable = folder.path() / "plain";
    EXPECT_EQ(refused.run(interrupt).error(), std::errc::permission_denied);
    refused.executable = folder.path();
    EXPECT_EQ(refused.run(interrupt).error(), std::errc::permission_denied);
}

TEST(ChildProcess, WithAnArgumentBeyondTheSystemsLimitGivesAnError) {
    const Interrupt interrupt;
    const ChildProcess process = child({"arguments", std::string(50'000'000, 'x')});
    EXPECT_EQ(process.run(interrupt).error(), std::errc::argument_list_too_long);
}

TEST(ChildProcess, GivesAnErrorWhereDescriptorsHaveRunOut) {
    const Interrupt interrupt;
    const int lowest = open("/dev/null", O_RDONLY);
    close(lowest);
    const int before = openDescriptors();
    rlimit old{};
    getrlimit(RLIMIT_NOFILE, &old);
    for (rlim_t left = 0; left < 4; ++left) {
        const rlimit tight{.rlim_cur = static_cast<rlim_t>(lowest) + left,
                           .rlim_max = old.rlim_max};
        setrlimit(RLIMIT_NOFILE, &tight);
        const Result result = child({"exit", "0"}).run(interrupt);
        setrlimit(RLIMIT_NOFILE, &old);
        ASSERT_FALSE(result) << left;
        EXPECT_EQ(result.error(), std::errc::too_many_files_open) << left;
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_TRUE(hasNoChild());
}

TEST(ChildProcess, WorksWhereOurStandardDescriptorsAreClosed) {
    const pid_t fork = ::fork();
    if (fork == 0) {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            close(descriptor);
        const Interrupt interrupt;
        const Result result = shell("cat; echo out; echo error >&2").run(interrupt);
        _exit(result && result->standardOutput == "out\n" && result->standardError == "error\n"
                  ? 0
                  : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(fork, &status, 0), fork);
    EXPECT_EQ(status, 0);
}

TEST(ChildProcess, LeaksNoDescriptorAndNoZombieOver1000Runs) {
    const Interrupt interrupt;
    const ChildProcess process{.executable = "/usr/bin/true", .arguments = {}, .environment = {}};
    const int before = openDescriptors();
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(process.run(interrupt)->status, 0);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_TRUE(hasNoChild());
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

// A child that tells through a named pipe that it is ready, and by the pipe's end that it is gone.
class InterruptedChild : public testing::Test {
protected:
    InterruptedChild() { mkfifo(namedPipe.c_str(), 0600); }
    ~InterruptedChild() override { close(reading); }

    void start(const std::string& what) {
        running = std::async(std::launch::async, [this, what] {
            return child({what, namedPipe}).run(interrupt);
        });
        reading = open(namedPipe.c_str(), O_RDONLY);
        std::array<char, 32> text{};
        ASSERT_GT(read(reading, text.data(), text.size() - 1), 0);
        process = std::stoi(text.data());
    }

    // Ends the child, and says what became of it.
    ChildProcess::Outcome outcome() {
        Result result = running.get();
        EXPECT_TRUE(result);
        return result.value_or(
            ChildProcess::Outcome{.standardOutput = "", .standardError = "", .status = -1});
    }

    void expectGone() const {
        std::array<char, 1> byte{};
        EXPECT_EQ(read(reading, byte.data(), byte.size()), 0);
    }

    TemporaryFolder folder;
    std::string namedPipe = folder.path() / "ready";
    Interrupt interrupt;
    std::future<Result> running;
    int reading = -1;
    pid_t process = -1;
};

TEST_F(InterruptedChild, IsEndedByTermination) {
    start("wait");
    interrupt.raise();
    EXPECT_EQ(outcome().status, SIGTERM);
    expectGone();
    EXPECT_TRUE(hasNoChild());
}

TEST_F(InterruptedChild, IsKilledWhenItIgnoresTermination) {
    start("ignore-termination");
    interrupt.raise();
    const auto left = outcome();
    EXPECT_EQ(left.status, SIGKILL);
    EXPECT_EQ(left.standardOutput, "still here");
    expectGone();
}

TEST_F(InterruptedChild, MayEndInItsOwnWay) {
    start("handle-termination");
    interrupt.raise();
    EXPECT_EQ(outcome().status, 7);
}

TEST_F(InterruptedChild, IsEndedAlsoWhereItHasClosedItsOutputs) {
    start("wait-with-closed-outputs");
    interrupt.raise();
    EXPECT_EQ(outcome().status, SIGTERM);
}

TEST_F(InterruptedChild, TakesAStubbornGrandchildWithIt) {
    start("left-behind");
    interrupt.raise();
    EXPECT_EQ(outcome().status, 3);
    expectGone();
}

TEST_F(InterruptedChild, IsNotWaitedForBecauseOfAGrandchildThatLeftTheGroup) {
    start("escaped");
    interrupt.raise();
    EXPECT_EQ(outcome().status, 3);
    EXPECT_EQ(kill(process, SIGKILL), 0);
    expectGone();
}

TEST(Interrupt, RaisedBeforeTheStartEndsEveryLaterChild) {
    Interrupt interrupt;
    interrupt.raise();
    for (int i = 0; i < 3; ++i) {
        const Result result = shell("while :; do :; done").run(interrupt);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, SIGTERM);
    }
}

TEST(Interrupt, CanBeRaisedAnyNumberOfTimes) {
    Interrupt interrupt;
    for (int i = 0; i < 100'000; ++i)
        interrupt.raise();
    EXPECT_EQ(shell("while :; do :; done").run(interrupt)->status, SIGTERM);
}

} // namespace
} // namespace brevane
