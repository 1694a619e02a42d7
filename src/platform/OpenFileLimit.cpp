// SPDX-License-Identifier: MIT
#include "OpenFileLimit.h"

#include <pthread.h>
#include <sys/resource.h>
#ifdef __APPLE__
#include <climits>

#include <algorithm>
#endif

namespace brevane {

namespace {

rlimit inherited;

// Runs in the forked process, where only what is safe in a signal handler may be called.
void restore() {
    setrlimit(RLIMIT_NOFILE, &inherited);
}

} // namespace

std::size_t raiseOpenFileLimit() {
    if (getrlimit(RLIMIT_NOFILE, &inherited) != 0) return 0;
    rlimit raised = inherited;
    raised.rlim_cur = raised.rlim_max;
#ifdef __APPLE__
    // setrlimit refuses more, although it calls the hard limit infinite.
    raised.rlim_cur = std::min<rlim_t>(raised.rlim_cur, OPEN_MAX);
#endif
    if (setrlimit(RLIMIT_NOFILE, &raised) != 0) return inherited.rlim_cur;
    pthread_atfork(nullptr, nullptr, restore);
    return raised.rlim_cur;
}

} // namespace brevane
