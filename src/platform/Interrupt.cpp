// SPDX-License-Identifier: MIT
#include "Interrupt.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace brevane {

Interrupt::Interrupt() {
    auto opened = Pipe::open();
    if (!opened) throw std::system_error(opened.error(), "Interrupt");
    pipe_ = std::move(*opened);
    // raise() must not block on a full pipe, which is readable anyway.
    fcntl(pipe_.writeEnd.get(), F_SETFL, O_NONBLOCK);
}

void Interrupt::raise() {
    while (write(pipe_.writeEnd.get(), "", 1) == -1 && errno == EINTR) {
    }
}

} // namespace brevane
