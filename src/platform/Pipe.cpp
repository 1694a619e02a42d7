// SPDX-License-Identifier: MIT
#include "Pipe.h"

#include "SystemError.h"

#include <fcntl.h>
#include <unistd.h>

#include <utility>

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

// Where standard descriptors of ours are closed, a pipe takes their numbers.
bool moveAboveStandardDescriptors(Descriptor& end) {
    if (end.get() > STDERR_FILENO) return true;
    Descriptor moved(fcntl(end.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!moved.isOpen()) return false;
    end = std::move(moved);
    return true;
}

} // namespace

std::expected<Pipe, std::error_code> Pipe::open() {
    int ends[2];
    if (openPipe(ends) == -1) return std::unexpected(lastSystemError());
    Pipe opened{.readEnd = Descriptor(ends[0]), .writeEnd = Descriptor(ends[1])};
    if (!moveAboveStandardDescriptors(opened.readEnd) ||
        !moveAboveStandardDescriptors(opened.writeEnd))
        return std::unexpected(lastSystemError());
    return opened;
}

} // namespace brevane
