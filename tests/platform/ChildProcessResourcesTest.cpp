// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

#include "ChildProgram.h"
#include "DescriptorLimit.h"
#ifdef __linux__
#include "WithoutSystemCall.h"
#endif

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/syscall.h>
#endif

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <functional>
#include <system_error>
#include <thread>

namespace brevane::test {
namespace {

TEST(ChildProcess, GivesAnErrorWhereDescriptorsHaveRunOut) {
    const Interrupt interrupt;
    const int lowest = open("/dev/null", O_RDONLY);
    close(lowest);
    const int before = openDescriptors();
    for (int left = 0; left < 4; ++left) {
        Result result;
        {
            const DescriptorLimit limit(lowest + left);
            result = child({"exit", "0"}).run(interrupt);
        }
        ASSERT_FALSE(result) << left;
        EXPECT_EQ(result.error(), std::errc::too_many_files_open) << left;
    }
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_TRUE(hasNoChild());
}

// Closes our standard descriptors for its lifetime.
class StandardDescriptorsClosed {
public:
    StandardDescriptorsClosed() {
        for (int descriptor = 0; descriptor < 3; ++descriptor) {
            kept[static_cast<std::size_t>(descriptor)] = fcntl(descriptor, F_DUPFD_CLOEXEC, 100);
            close(descriptor);
        }
    }
    ~StandardDescriptorsClosed() {
        for (int descriptor = 0; descriptor < 3; ++descriptor) {
            dup2(kept[static_cast<std::size_t>(descriptor)], descriptor);
            close(kept[static_cast<std::size_t>(descriptor)]);
        }
    }
    StandardDescriptorsClosed(const StandardDescriptorsClosed&) = delete;
    StandardDescriptorsClosed& operator=(const StandardDescriptorsClosed&) = delete;

private:
    std::array<int, 3> kept{};
};

TEST(ChildProcess, WorksWhereOurStandardDescriptorsAreClosed) {
    const Interrupt interrupt;
    Result result;
    {
        const StandardDescriptorsClosed closed;
        result = shell("cat; echo out; echo error >&2").run(interrupt);
    }
    ASSERT_TRUE(result);
    EXPECT_EQ(result->standardOutput, "out\n");
    EXPECT_EQ(result->standardError, "error\n");
}

// The child itself runs out of descriptors while it moves its pipes above 0, 1 and 2.
TEST(ChildProcess, ReportsThatItsDescriptorsHaveRunOut) {
    const Interrupt interrupt;
    int failed = 0;
    for (int limit = 3; limit < 16; ++limit) {
        Result result;
        {
            const StandardDescriptorsClosed closed;
            const DescriptorLimit few(limit);
            result = child({"exit", "5"}).run(interrupt);
        }
        if (result) {
            EXPECT_EQ(result->status, 5) << limit;
        } else {
            ++failed;
            EXPECT_EQ(result.error(), std::errc::too_many_files_open) << limit;
        }
    }
    EXPECT_GT(failed, 0);
    EXPECT_LT(failed, 13);
}

TEST(ChildProcess, GivesAnErrorWhereOurProgramHasItsChildrenReaped) {
    const auto before = signal(SIGCHLD, SIG_IGN);
    const Interrupt interrupt;
    const Result result = child({"exit", "0"}).run(interrupt);
    signal(SIGCHLD, before);
    EXPECT_EQ(result.error(), std::errc::no_child_process);
}

// Interrupts the blocking calls of the thread that it is constructed on, which then return EINTR,
// as often as it can.
class Interruptions {
public:
    Interruptions() {
        struct sigaction action {};
        action.sa_handler = [](int) {};
        sigaction(SIGUSR1, &action, &before_);
        sender_ = std::thread([this, thread = pthread_self()] {
            while (!ended_)
                pthread_kill(thread, SIGUSR1);
        });
    }
    ~Interruptions() {
        ended_ = true;
        sender_.join();
        sigaction(SIGUSR1, &before_, nullptr);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

private:
    struct sigaction before_ {};
    std::atomic<bool> ended_ = false;
    std::thread sender_;
};

TEST(ChildProcess, IsStartedAndSeenToItsEndThoughSignalsInterruptUs) {
    const Interrupt interrupt;
    const Interruptions interruptions;
    for (int i = 0; i < 100; ++i) {
        const Result ended = child({"exit", "5"}).run(interrupt);
        ASSERT_TRUE(ended);
        EXPECT_EQ(ended->status, 5);
        const ChildProcess missing{.executable = "/missing", .arguments = {}, .environment = {}};
        const Result failed = missing.run(interrupt);
        ASSERT_FALSE(failed);
        EXPECT_EQ(failed.error(), std::errc::no_such_file_or_directory);
    }
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

#ifdef __linux__
// As before Linux 5.3.
void runWithoutExitDescriptors(const std::function<void()>& task) {
    runWithoutSystemCall(SYS_pidfd_open, task);
}

TEST(ChildProcessWithoutExitDescriptors, IsSeenToItsEndAllTheSame) {
    runWithoutExitDescriptors([] {
        EXPECT_EQ(run(child({"exit", "9"})).status, 9);
        EXPECT_EQ(run(child({"end-after-closing-outputs"})).status, 5);
        const auto late = run(child({"late"}));
        EXPECT_EQ(late.standardOutput, "late");
        EXPECT_EQ(late.status, 3);
    });
    EXPECT_TRUE(hasNoChild());
}

TEST(ChildProcessWithoutExitDescriptors, IsInterruptedAllTheSame) {
    runWithoutExitDescriptors([] {
        Interrupt interrupt;
        interrupt.raise();
        EXPECT_EQ(shell("while :; do :; done").run(interrupt)->status, SIGTERM);
        EXPECT_EQ(shell("exec >&- 2>&-; while :; do :; done").run(interrupt)->status, SIGTERM);
    });
}
#endif

} // namespace
} // namespace brevane::test
