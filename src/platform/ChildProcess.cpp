// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

#include "Descriptor.h"
#include "GroupGuard.h"
#include "Launch.h"
#include "SystemError.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __APPLE__
#include <sys/event.h>
#else
#include <sys/syscall.h>
#endif

#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <utility>

namespace brevane {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Time between SIGTERM and SIGKILL.
constexpr std::chrono::seconds grace{1};

// In milliseconds, between calls of waitid if there is no descriptor to watch for the exit.
constexpr int askingInterval = 10;

// Reads once and appends the bytes; closes the output at end of file or on an error.
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

// Returns a descriptor that polls as readable once the child has exited, without reaping it.
// Returns a closed one if the system cannot provide one, on macOS also if the child has already
// exited.
Descriptor watchExit(pid_t child) {
#ifdef __APPLE__
    Descriptor events(kqueue());
    struct kevent exit;
    EV_SET(&exit, child, EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
    if (kevent(events.get(), &exit, 1, nullptr, 0, nullptr) == -1) events.close();
    return events;
#else
    // By number: glibc 2.36 declares pidfd_open without extern "C".
    return Descriptor(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
#endif
}

// Whether the child has exited or has been reaped by someone else. Does not reap it.
bool hasExited(pid_t child) {
    siginfo_t exited{};
    if (waitid(P_PID, static_cast<id_t>(child), &exited, WEXITED | WNOHANG | WNOWAIT) == -1)
        return errno == ECHILD;
    return exited.si_pid == child;
}

// A launched child process, the leader of its own session, not reaped yet.
class RunningChild {
public:
    // Takes ownership of the child and of the read ends of its output pipes.
    RunningChild(pid_t process, Descriptor standardOutput, Descriptor standardError,
                 std::chrono::milliseconds patience);

    // Drains the outputs and reaps the child as documented at ChildProcess::run(). Call once.
    // Returns an error if someone else has reaped the child.
    [[nodiscard]] std::expected<ChildProcess::Outcome, std::error_code>
    finish(const Interrupt& interrupt);

private:
    void drainUntilExit(const Interrupt& interrupt);
    void signalGroup(int signal) const;

    pid_t process_;
    Descriptor standardOutput_;
    Descriptor standardError_;
    std::chrono::milliseconds patience_;
    ChildProcess::Outcome outcome_{};
};

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
    // The signal to send when the deadline passes; after SIGKILL there is none.
    int next = SIGTERM;
    std::optional<Clock::time_point> deadline;
    bool killed = false;
    while (!exited || (!killed && (standardOutput_.isOpen() || standardError_.isOpen()))) {
        // poll ignores the -1 of a closed descriptor.
        std::array<pollfd, 4> watched{{
            {.fd = standardOutput_.get(), .events = POLLIN, .revents = 0},
            {.fd = standardError_.get(), .events = POLLIN, .revents = 0},
            {.fd = exited ? -1 : exit.get(), .events = POLLIN, .revents = 0},
            {.fd = deadline ? -1 : interrupt.descriptor(), .events = POLLIN, .revents = 0},
        }};
        int timeout = deadline && !killed ? millisecondsUntil(*deadline) : -1;
        // Without a descriptor to watch, waitid has to be polled.
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
    // The child is not reaped yet, so its process ID cannot have been reused.
    kill(-process_, signal);
}

} // namespace

std::expected<ChildProcess::Outcome, std::error_code>
ChildProcess::run(const Interrupt& interrupt) const {
    auto output = Pipe::open();
    if (!output) return std::unexpected(output.error());
    auto error = Pipe::open();
    if (!error) return std::unexpected(error.error());

    const auto process = launch(*this, output->writeEnd.get(), error->writeEnd.get());
    if (!process) return std::unexpected(process.error());

    // The pipes reach end of file only once our copies of the write ends are closed.
    output->writeEnd.close();
    error->writeEnd.close();
    RunningChild child(*process, std::move(output->readEnd), std::move(error->readEnd), patience);
    return child.finish(interrupt);
}

} // namespace brevane
