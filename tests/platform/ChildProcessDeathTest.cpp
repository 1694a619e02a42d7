// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

#include "ChildProgram.h"
#include "TemporaryFolder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <fstream>
#include <string>

namespace brevane::test {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

// Another process of ours that runs a child. The child opens a named pipe when it is ready; the
// pipe reaches end of file when the child is gone.
class ChildOfAKilledProcess : public testing::Test {
protected:
    ChildOfAKilledProcess() { mkfifo(namedPipe_.c_str(), 0600); }
    ~ChildOfAKilledProcess() override { close(reading_); }

    void start(const std::string& what) {
        parent_ = fork();
        if (parent_ == 0) {
            const Interrupt interrupt;
            static_cast<void>(child({what, namedPipe_}).run(interrupt));
            _exit(0);
        }
        reading_ = open(namedPipe_.c_str(), O_RDONLY);
        std::array<char, 32> text{};
        ASSERT_GT(read(reading_, text.data(), text.size() - 1), 0);
        process_ = std::stoi(text.data());
    }

    // What the child has started is guarded only once the parent has forked the guard.
    void awaitGuard() const {
        const auto deadline = steady_clock::now() + 10s;
        while (!hasGuard()) {
            ASSERT_LT(steady_clock::now(), deadline);
            sched_yield();
        }
    }

    [[nodiscard]] bool hasGuard() const {
        const std::string parent = std::to_string(parent_);
        std::ifstream children("/proc/" + parent + "/task/" + parent + "/children");
        for (std::string child; children >> child;) {
            std::ifstream nameFile("/proc/" + child + "/comm");
            std::string name;
            if (nameFile >> name && name == "brevane-guard") return true;
        }
        return false;
    }

    void killParent() const {
        ASSERT_EQ(kill(parent_, SIGKILL), 0);
        ASSERT_EQ(waitpid(parent_, nullptr, 0), parent_);
    }

    void expectGone() const {
        pollfd end{.fd = reading_, .events = POLLIN, .revents = 0};
        EXPECT_EQ(poll(&end, 1, 10'000), 1);
        if ((end.revents & POLLHUP) == 0) kill(process_, SIGKILL);
    }

    TemporaryFolder folder_;
    std::string namedPipe_ = folder_ / "ready";
    pid_t parent_ = -1;
    int reading_ = -1;
    pid_t process_ = -1;
};

TEST_F(ChildOfAKilledProcess, EndsToo) {
    start("wait");
    killParent();
    expectGone();
}

TEST_F(ChildOfAKilledProcess, EndsAlsoWhereItIgnoresTermination) {
    start("ignore-termination");
    killParent();
    expectGone();
}

TEST_F(ChildOfAKilledProcess, TakesWhatItHasStartedWithIt) {
    start("left-behind");
    awaitGuard();
    killParent();
    expectGone();
}

} // namespace
} // namespace brevane::test
