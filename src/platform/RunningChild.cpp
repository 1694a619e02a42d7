// SPDX-License-Identifier: MIT
#include "RunningChild.h"

#include "ExitWatch.h"
#include "GroupGuard.h"
#include "SystemError.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <utility>

namespace brevane {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// How long a child has from SIGTERM to SIGKILL.
constexpr std::chrono::seconds grace{1};

// In milliseconds.
constexpr int askingInterval = 10;

// Appends what there is to be read, and closes the output at its end.
void readSome(Descriptor& output, std::string& bytes) {
    std::array<char, 65536> chunk;
    const ssize_t count = read(output.get(), chunk.data(), chunk.size());
    if (count > 0) {
        bytes.append(chunk.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
        output.close();
    }
}

int millisecondsUntil(Clock::time_point time) {
    const auto left = std::chrono::ceil<milliseconds>(time - Clock::now());
    return left > milliseconds::zero() ? static_cast<int>(left.count()) : 0;
}

} // namespace

RunningChild::RunningChild(pid_t process, Descriptor standardOutput, Descriptor standardError,
                           milliseconds patience)
    : process_(process), standardOutput_(std::move(standardOutput)),
      standardError_(std::move(standardError)), patience_(patience) {}

std::expected<ChildProcess::Outcome, std::error_code>
RunningChild::finish(const Interrupt& interrupt) {
    {
        const GroupGuard guard(process_);
        drainUntilExit(interrupt);
    }
    int status = 0;
    while (waitpid(process_, &status, 0) == -1) {
        if (errno != EINTR) return std::unexpected(lastSystemError());
    }
    outcome_.status = WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
    return std::move(outcome_);
}

void RunningChild::drainUntilExit(const Interrupt& interrupt) {
    const Descriptor exit = watchExit(process_);
    bool exited = false;
    // What the interrupted child gets when the deadline has come; after SIGKILL there is none.
    int next = SIGTERM;
    std::optional<Clock::time_point> deadline;
    bool killed = false;
    while (!exited || (!killed && (standardOutput_.isOpen() || standardError_.isOpen()))) {
        // Poll passes over -1, which a closed descriptor is.
        std::array<pollfd, 4> watched{{
            {.fd = standardOutput_.get(), .events = POLLIN, .revents = 0},
            {.fd = standardError_.get(), .events = POLLIN, .revents = 0},
            {.fd = exited ? -1 : exit.get(), .events = POLLIN, .revents = 0},
            {.fd = deadline ? -1 : interrupt.descriptor(), .events = POLLIN, .revents = 0},
        }};
        int timeout = deadline && !killed ? millisecondsUntil(*deadline) : -1;
        // Without a descriptor for the exit it has to be asked for.
        if (!exited && !exit.isOpen()) timeout = askingInterval;
        if (poll(watched.data(), watched.size(), timeout) == -1) continue;

        if (watched[0].revents != 0) readSome(standardOutput_, outcome_.standardOutput);
        if (watched[1].revents != 0) readSome(standardError_, outcome_.standardError);
        if (exit.isOpen() ? watched[2].revents != 0 : hasExited(process_)) exited = true;
        if (watched[3].revents != 0) deadline = Clock::now() + patience_;
        if (!deadline || killed || Clock::now() < *deadline) continue;
        signalGroup(next);
        killed = next == SIGKILL;
        next = SIGKILL;
        deadline = Clock::now() + grace;
    }
}

void RunningChild::signalGroup(int signal) const {
    // The child is not reaped yet, so the number is still its own.
    kill(-process_, signal);
}

} // namespace brevane
