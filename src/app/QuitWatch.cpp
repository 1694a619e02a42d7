// SPDX-License-Identifier: MIT
#include "QuitWatch.h"

#include "Pipe.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace brevane {

namespace {

using Clock = std::chrono::steady_clock;

// Leaves the kernel a tenth of the two seconds to release what the process holds.
constexpr std::chrono::milliseconds limit{1900};

constexpr std::array quitSignals{SIGTERM, SIGINT, SIGHUP};

std::atomic<int> wakeUpEnd = -1;
static_assert(std::atomic<int>::is_always_lock_free, "read in a signal handler");

extern "C" void wakeUp(int) {
    const int savedErrno = errno;
    // A full pipe returns EAGAIN, but is readable, which is enough.
    static_cast<void>(!write(wakeUpEnd, "", 1));
    errno = savedErrno;
}

// Installs the handler for the signals that are not ignored, and returns them.
sigset_t handledSignals() {
    sigset_t handled;
    sigemptyset(&handled);
    for (const int signal : quitSignals) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
        action.sa_handler = wakeUp;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        if (sigaction(signal, &action, nullptr) == 0) sigaddset(&handled, signal);
    }
    return handled;
}

} // namespace

struct QuitWatch::State {
    Pipe pipe;
    std::atomic<int> status = EXIT_SUCCESS;
    std::mutex mutex;
    bool requested = false;     // guarded by mutex
    std::function<void()> quit; // guarded by mutex

    [[noreturn]] void watch(const sigset_t& handled) {
        pthread_sigmask(SIG_UNBLOCK, &handled, nullptr);
        pollfd wait{.fd = pipe.readEnd.get(), .events = POLLIN, .revents = 0};
        while (poll(&wait, 1, -1) != 1) {
        }
        const auto end = Clock::now() + limit;
        {
            const std::scoped_lock lock(mutex);
            requested = true;
            if (const auto call = std::exchange(quit, nullptr)) call();
        }
        std::this_thread::sleep_until(end);
#ifdef __linux__
        // The kernel keeps a process and its open descriptors while one of its threads waits for a
        // file system that does not answer. Closing them frees window, ports and lock.
        closefrom(STDERR_FILENO + 1);
#endif
        _exit(status);
    }
};

QuitWatch::QuitWatch() : state_(std::make_shared<State>()) {
    auto pipe = Pipe::open();
    if (!pipe) throw std::system_error(pipe.error());
    state_->pipe = std::move(*pipe);
    fcntl(state_->pipe.writeEnd.get(), F_SETFL, O_NONBLOCK);
    wakeUpEnd = state_->pipe.writeEnd.get();

    const sigset_t handled = handledSignals();
    pthread_sigmask(SIG_BLOCK, &handled, nullptr);
    std::thread([state = state_, handled] { state->watch(handled); }).detach();
}

QuitWatch::Unblocked::Unblocked() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : quitSignals)
        sigaddset(&set, signal);
    pthread_sigmask(SIG_UNBLOCK, &set, &before_);
}

QuitWatch::Unblocked::~Unblocked() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void QuitWatch::onRequest(std::function<void()> quit) {
    const std::scoped_lock lock(state_->mutex);
    if (state_->requested && quit)
        quit();
    else
        state_->quit = std::move(quit);
}

void QuitWatch::request(int status) {
    state_->status = status;
    wakeUp(0);
}

} // namespace brevane
