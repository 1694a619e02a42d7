// SPDX-License-Identifier: MIT
#include "Pipe.h"

#include "SystemError.h"

#include <fcntl.h>
#include <unistd.h>

namespace brevane {

namespace {

int openPipe(int (&ends)[2]) {
#ifdef __APPLE__
    // There is no pipe2, but also no child of ours that inherits what it is not given.
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
