// SPDX-License-Identifier: MIT
#include "Pipe.h"

#include "SystemError.h"

#include <fcntl.h>
#include <unistd.h>

namespace brevane {

namespace {

int openPipe(int (&ends)[2]) {
#ifdef __APPLE__
    // macOS has no pipe2, but POSIX_SPAWN_CLOEXEC_DEFAULT keeps these from our children in any
    // case.
    if (pipe(ends) == -1) return -1;
    for (const int end : ends)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    return 0;
#else
    return pipe2(ends, O_CLOEXEC);
#endif
}

} // namespace

std::expected<Pipe, std::error_code> Pipe::open() {
    int ends[2];
    if (openPipe(ends) == -1) return std::unexpected(lastSystemError());
    return Pipe{.readEnd = Descriptor(ends[0]), .writeEnd = Descriptor(ends[1])};
}

} // namespace brevane
