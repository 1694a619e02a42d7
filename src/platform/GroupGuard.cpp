// SPDX-License-Identifier: MIT
#include "GroupGuard.h"

#ifdef __linux__
#include "SignalsBlocked.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace brevane {

#ifdef __linux__

namespace {

// Runs in the forked child with all signals blocked. Only async-signal-safe calls: another thread
// may have held any lock at the fork.
[[noreturn]] void watchOver(pid_t group, pid_t parent) {
    // A signal to the parent's process group, or from its terminal, must not end this process.
    setsid();
    prctl(PR_SET_NAME, "brevane-guard");
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    closefrom(0);
    sigset_t death;
    sigemptyset(&death);
    sigaddset(&death, SIGTERM);
    // SIGTERM may also come from elsewhere.
    while (getppid() == parent)
        sigwaitinfo(&death, nullptr);
    kill(-group, SIGKILL);
    _exit(0);
}

} // namespace

GroupGuard::GroupGuard(pid_t group) {
    const SignalsBlocked blocked;
    const pid_t parent = getpid();
    process_ = fork();
    if (process_ == 0) watchOver(group, parent);
}

GroupGuard::~GroupGuard() {
    if (process_ == -1) return;
    kill(process_, SIGKILL);
    while (waitpid(process_, nullptr, 0) == -1 && errno == EINTR) {
    }
}

#else

GroupGuard::GroupGuard(pid_t) {}
GroupGuard::~GroupGuard() = default;

#endif

} // namespace brevane
