// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>
#include <cstdlib>
#include <functional>
#include <memory>

namespace brevane {

/// Sees to it that a request to quit ends the process within two seconds, whatever its other
/// threads wait for: on a thread of its own it asks for an orderly end, and ends the process on the
/// spot when that takes too long. SIGTERM, SIGINT and SIGHUP are such requests, except those that
/// were ignored when the program started (nohup). One to a process, for the rest of its life.
class QuitWatch {
public:
    /// Made while there is one thread: those started later inherit from it that the signals are
    /// blocked, so that only the watching thread gets them. Throws std::system_error where there
    /// is no thread or descriptor left.
    QuitWatch();
    QuitWatch(const QuitWatch&) = delete;
    QuitWatch& operator=(const QuitWatch&) = delete;

    /// Has `quit` called once when there is a request, on the watching thread; if there has been
    /// one already, at once. It must not block. It replaces the one before, which is not running
    /// any more when this returns; an empty one takes it back.
    void onRequest(std::function<void()> quit);

    /// Asks the process to end. `status` is for where it does not end in order. Any thread.
    void request(int status = EXIT_SUCCESS);

    /// Lets the calling thread get the signals too for as long as it lives: a program that it
    /// starts meanwhile begins with what the thread has blocked.
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
    const std::shared_ptr<State> state_; // the thread never ends, and holds it too
};

} // namespace brevane
