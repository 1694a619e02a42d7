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

// A descriptor that poll reports as readable once a child of ours has exited. Does not reap it. A
// closed one where the operating system has none to give, also because the child has exited.
Descriptor watchExit(pid_t child) {
#ifdef __APPLE__
    Descriptor events(kqueue());
    struct kevent exit;
    EV_SET(&exit, child, EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
    if (kevent(events.get(), &exit, 1, nullptr, 0, nullptr) == -1) events.close();
    return events;
#else
    // By number, as the C library's declaration of pidfd_open is not usable from C++ everywhere.
    return Descriptor(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
#endif
}

// Whether a child of ours has exited, or is gone altogether. Does not reap it.
bool hasExited(pid_t child) {
    siginfo_t exited{};
    if (waitid(P_PID, static_cast<id_t>(child), &exited, WEXITED | WNOHANG | WNOWAIT) == -1)
        return errno == ECHILD;
    return exited.si_pid == child;
}

// A child process that has been launched as the leader of a session, and is not reaped yet.
class RunningChild {
public:
    // Takes over the child and the read ends of its outputs.
    RunningChild(pid_t process, Descriptor standardOutput, Descriptor standardError,
                 std::chrono::milliseconds patience);

    // Sees the child to its end as ChildProcess::run() promises. Once only. The error where
    // someone else has reaped the child.
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

} // namespace

std::expected<ChildProcess::Outcome, std::error_code>
ChildProcess::run(const Interrupt& interrupt) const {
    auto output = Pipe::open();
    if (!output) return std::unexpected(output.error());
    auto error = Pipe::open();
    if (!error) return std::unexpected(error.error());

    const auto process = launch(*this, output->writeEnd.get(), error->writeEnd.get());
    if (!process) return std::unexpected(process.error());

    // The outputs are at their end once the child has closed them, so none may stay with us.
    output->writeEnd.close();
    error->writeEnd.close();
    RunningChild child(*process, std::move(output->readEnd), std::move(error->readEnd), patience);
    return child.finish(interrupt);
}

} // namespace brevane
