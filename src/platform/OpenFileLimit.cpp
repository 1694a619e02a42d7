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

// Runs in the forked child, so only async-signal-safe calls are allowed.
void restore() {
    setrlimit(RLIMIT_NOFILE, &inherited);
}

} // namespace

std::size_t raiseOpenFileLimit() {
    if (getrlimit(RLIMIT_NOFILE, &inherited) != 0) return 0;
    rlimit raised = inherited;
    raised.rlim_cur = raised.rlim_max;
#ifdef __APPLE__
    // setrlimit refuses more, although getrlimit reports an infinite hard limit.
    raised.rlim_cur = std::min<rlim_t>(raised.rlim_cur, OPEN_MAX);
#endif
    if (setrlimit(RLIMIT_NOFILE, &raised) != 0) return inherited.rlim_cur;
    pthread_atfork(nullptr, nullptr, restore);
    return raised.rlim_cur;
}

} // namespace brevane
