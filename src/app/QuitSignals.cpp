// SPDX-License-Identifier: MIT
#include "QuitSignals.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace brevane {

namespace {

constexpr std::array quitSignals{SIGTERM, SIGINT, SIGHUP};

std::atomic<int> wakeUpEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free, "read in a signal handler");

extern "C" void wakeUp(int) {
    const int savedErrno = errno;
    const char byte = 0;
    // A full pipe is as good: the loop has been told and not yet looked.
    static_cast<void>(!write(wakeUpEnd, &byte, 1));
    errno = savedErrno;
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction previous {};
    if (sigaction(signal, nullptr, &previous) != 0 || previous.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

} // namespace

QuitSignals::QuitSignals(std::function<void()> quit) {
    if (::pipe(pipe.data()) != 0) return;
    for (const int end : pipe) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    notifier = std::make_unique<QSocketNotifier>(pipe[0], QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                     [end = pipe[0], quit = std::move(quit)] {
                         std::array<char, 16> bytes;
                         while (read(end, bytes.data(), bytes.size()) > 0) {
                         }
                         quit();
                     });
    wakeUpEnd = pipe[1];
    sigset_t handled;
    sigemptyset(&handled);
    for (const int signal : quitSignals) {
        handle(signal, wakeUp);
        sigaddset(&handled, signal);
    }
    pthread_sigmask(SIG_UNBLOCK, &handled, nullptr);
}

QuitSignals::~QuitSignals() {
    for (const int signal : quitSignals)
        handle(signal, SIG_IGN);
    wakeUpEnd = -1;
    notifier.reset();
    for (const int end : pipe)
        if (end >= 0) close(end);
}

} // namespace brevane
