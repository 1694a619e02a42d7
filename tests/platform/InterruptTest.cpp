// SPDX-License-Identifier: MIT
#include "Interrupt.h"

#include "ChildProgram.h"
#include "TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <future>
#include <string>

namespace brevane::test {
namespace {

// A child that opens a named pipe when it is ready; the pipe reaches end of file when the child is
// gone.
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

    // Waits for the child and returns its outcome.
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
    std::string namedPipe = folder / "ready";
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
} // namespace brevane::test
