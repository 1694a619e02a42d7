// SPDX-License-Identifier: MIT
#include "Launch.h"

#include "Pipe.h"
#include "SignalsBlocked.h"
#include "SystemError.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

namespace brevane {

namespace {

// Everything that the child needs between fork and exec, prepared before the fork: the child may
// only make async-signal-safe calls, since another thread may have held any lock at the fork.
struct Plan {
    const char* executable;
    char* const* arguments;
    char* const* environment;
    int standardOutput;
    int standardError;
    int failure; // where the child writes errno if exec fails
    pid_t parent;
};

[[noreturn]] void giveUp(int failure) {
    const int error = errno;
    static_cast<void>(!write(failure, &error, sizeof error));
    _exit(127);
}

// If one of our own standard descriptors is closed, a pipe may have taken its number.
int aboveStandard(int descriptor) {
    return descriptor > STDERR_FILENO ? descriptor
                                      : fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

[[noreturn]] void becomeChild(const Plan& plan) {
    const int failure = aboveStandard(plan.failure);
    const int output = aboveStandard(plan.standardOutput);
    const int error = aboveStandard(plan.standardError);
    if (failure == -1) giveUp(plan.failure);
    if (output == -1 || error == -1) giveUp(failure);

    setsid();
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have died before the prctl.
    if (getppid() != plan.parent) _exit(127);

    const int input = open("/dev/null", O_RDONLY);
    if (input == -1 || dup2(input, STDIN_FILENO) == -1 || dup2(output, STDOUT_FILENO) == -1 ||
        dup2(error, STDERR_FILENO) == -1)
        giveUp(failure);
    constexpr int last = STDERR_FILENO + 1;
    if (failure != last && dup3(failure, last, O_CLOEXEC) == -1) giveUp(failure);
    // Libraries may have opened descriptors without O_CLOEXEC.
    closefrom(last + 1);

    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action {};
        action.sa_handler = SIG_DFL;
        sigaction(signal, &action, nullptr);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execve(plan.executable, plan.arguments, plan.environment);
    giveUp(last);
}

// Returns the errno written by the child, or 0 if exec has closed its end of the pipe.
int awaitExec(const Descriptor& failure) {
    int error = 0;
    while (read(failure.get(), &error, sizeof error) == -1 && errno == EINTR) {
    }
    return error;
}

} // namespace

std::expected<pid_t, std::error_code> launch(const ChildProcess& description, int standardOutput,
                                             int standardError) {
    const std::vector<char*> environment = pointersTo(description.environment);
    std::vector<char*> arguments = pointersTo(description.arguments);
    arguments.insert(arguments.begin(), const_cast<char*>(description.executable.c_str()));
    auto failure = Pipe::open();
    if (!failure) return std::unexpected(failure.error());

    const Plan plan{.executable = description.executable.c_str(),
                    .arguments = arguments.data(),
                    .environment = environment.data(),
                    .standardOutput = standardOutput,
                    .standardError = standardError,
                    .failure = failure->writeEnd.get(),
                    .parent = getpid()};
    pid_t process = -1;
    {
        const SignalsBlocked blocked;
        process = fork();
        if (process == 0) becomeChild(plan);
    }
    if (process == -1) return std::unexpected(lastSystemError());

    failure->writeEnd.close();
    if (const int error = awaitExec(failure->readEnd); error != 0) {
        while (waitpid(process, nullptr, 0) == -1 && errno == EINTR) {
        }
        return std::unexpected(std::error_code(error, std::system_category()));
    }
    return process;
}

} // namespace brevane
