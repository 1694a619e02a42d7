// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <cstdlib>
#include <functional>
#include <memory>

namespace brevane {

/// Ends the process within two seconds of a request to quit, even if other threads are blocked: its
/// own thread asks for an orderly end, and calls _exit() if that takes too long. SIGTERM, SIGINT
/// and SIGHUP are such requests, except those that were ignored when the program started (nohup).
/// One per process, for the rest of its life.
class QuitWatch {
public:
    /// Created while there is one thread: it blocks the signals there, later threads inherit the
    /// mask, and only the watching thread receives them. Throws std::system_error if there is no
    /// thread or descriptor left.
    QuitWatch();
    QuitWatch(const QuitWatch&) = delete;
    QuitWatch& operator=(const QuitWatch&) = delete;

    /// Calls `quit` once, on the watching thread when a request arrives, or on the calling thread
    /// if one has arrived already. It must not block. Replaces the previous function, which is
    /// not running when this returns; an empty one only removes it.
    void onRequest(std::function<void()> quit);

    /// Requests the end; `status` is for _exit() if there is no orderly end. Any thread.
    void request(int status = EXIT_SUCCESS);

    /// Unblocks the signals in the calling thread while it lives: a program that the thread starts
    /// meanwhile inherits the signal mask.
    class Unblocked {
    public:
        Unblocked();
        ~Unblocked();
        Unblocked(const Unblocked&) = delete;
        Unblocked& operator=(const Unblocked&) = delete;

    private:
        sigset_t before_{};
    };

private:
    struct State;
    const std::shared_ptr<State> state_; // shared with the thread, which never ends
};

} // namespace brevane
