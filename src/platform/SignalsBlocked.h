// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>

namespace brevane {

/// Keeps every signal from the calling thread for as long as it lives. A process forked meanwhile
/// starts with all of them blocked, so that no handler of ours runs there.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before_{};
};

} // namespace brevane
