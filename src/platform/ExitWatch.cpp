// SPDX-License-Identifier: MIT
#include "ExitWatch.h"

#include "SystemError.h"

#ifdef __APPLE__
#include <sys/event.h>
#else
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace brevane {

#ifdef __APPLE__

std::expected<Descriptor, std::error_code> watchExit(pid_t child) {
    Descriptor events(kqueue());
    if (!events.isOpen()) return std::unexpected(lastSystemError());
    struct kevent exit;
    EV_SET(&exit, child, EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
    if (kevent(events.get(), &exit, 1, nullptr, 0, nullptr) == -1) {
        if (errno == ESRCH) return Descriptor();
        return std::unexpected(lastSystemError());
    }
    return events;
}

#else

std::expected<Descriptor, std::error_code> watchExit(pid_t child) {
    // By number, as the C library's declaration of pidfd_open is not usable from C++ everywhere.
    Descriptor exit(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
    if (!exit.isOpen()) return std::unexpected(lastSystemError());
    return exit;
}

#endif

} // namespace brevane
