// SPDX-License-Identifier: MIT
#pragma once

#include <csignal>

namespace brevane {

/// Blocks all signals on the calling thread for its lifetime. A child forked meanwhile inherits the
/// mask, so that none of our handlers runs there.
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
