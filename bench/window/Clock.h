// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace brevane::bench {

/// A clock's reading in milliseconds.
inline double read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}
inline double now() {
    return read(CLOCK_MONOTONIC);
}

/// Milliseconds since the driver started this program, the time of which is in BENCH_STARTED.
inline double sinceExec() {
    const char* started = std::getenv("BENCH_STARTED");
    return started == nullptr ? 0 : now() - std::atof(started);
}

/// Prints one measured value for the driver.
inline void report(const char* name, double value) {
    std::printf("%s %.4f\n", name, value);
    std::fflush(stdout);
}

/// Resident memory of this process in mebibytes.
inline double residentMemory() {
    long kibibytes = 0;
    if (std::FILE* status = std::fopen("/proc/self/status", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, status) != nullptr)
            if (std::strncmp(line, "VmRSS:", 6) == 0) kibibytes = std::atol(line + 6);
        std::fclose(status);
    }
    return static_cast<double>(kibibytes) / 1024;
}

} // namespace brevane::bench
