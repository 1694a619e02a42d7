// SPDX-License-Identifier: MIT
#include "ExitWatch.h"

#include <sys/wait.h>
#ifdef __APPLE__
#include <sys/event.h>
#else
#include <sys/syscall.h>
#include <unistd.h>
#endif

#include <cerrno>

namespace brevane {

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

bool hasExited(pid_t child) {
    siginfo_t exited{};
    if (waitid(P_PID, static_cast<id_t>(child), &exited, WEXITED | WNOHANG | WNOWAIT) == -1)
        return errno == ECHILD;
    return exited.si_pid == child;
}

} // namespace brevane
