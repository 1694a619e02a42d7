// SPDX-License-Identifier: MIT
#include "RunningChild.h"

#include "ExitWatch.h"
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

// How long an interrupted child has to end by itself.
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

RunningChild::RunningChild(pid_t launched, Descriptor output, Descriptor error)
    : process(launched), standardOutput(std::move(output)), standardError(std::move(error)) {}

std::expected<ChildProcess::Outcome, std::error_code>
RunningChild::finish(const Interrupt& interrupt) {
    drainUntilExit(interrupt);
    int status = 0;
    while (waitpid(process, &status, 0) == -1) {
        if (errno != EINTR) return std::unexpected(lastSystemError());
    }
    outcome.status = WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
    return std::move(outcome);
}

void RunningChild::drainUntilExit(const Interrupt& interrupt) {
    const Descriptor exit = watchExit(process);
    bool exited = false;
    std::optional<Clock::time_point> deadline;
    bool killed = false;
    while (!exited || (!killed && (standardOutput.isOpen() || standardError.isOpen()))) {
        // Poll passes over -1, which a closed descriptor is.
        std::array<pollfd, 4> watched{{
            {.fd = standardOutput.get(), .events = POLLIN, .revents = 0},
            {.fd = standardError.get(), .events = POLLIN, .revents = 0},
            {.fd = exited ? -1 : exit.get(), .events = POLLIN, .revents = 0},
            {.fd = deadline ? -1 : interrupt.descriptor(), .events = POLLIN, .revents = 0},
        }};
        int timeout = deadline && !killed ? millisecondsUntil(*deadline) : -1;
        // Without a descriptor for the exit it has to be asked for.
        if (!exited && !exit.isOpen()) timeout = askingInterval;
        if (poll(watched.data(), watched.size(), timeout) == -1) continue;

        if (watched[0].revents != 0) readSome(standardOutput, outcome.standardOutput);
        if (watched[1].revents != 0) readSome(standardError, outcome.standardError);
        if (exit.isOpen() ? watched[2].revents != 0 : hasExited(process)) exited = true;
        if (watched[3].revents != 0) {
            signalGroup(SIGTERM);
            deadline = Clock::now() + grace;
        }
        if (deadline && !killed && Clock::now() >= *deadline) {
            signalGroup(SIGKILL);
            killed = true;
        }
    }
}

void RunningChild::signalGroup(int signal) const {
    // The child is not reaped yet, so the number is still its own.
    kill(-process, signal);
}

} // namespace brevane
