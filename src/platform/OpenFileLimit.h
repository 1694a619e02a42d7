// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace brevane {

/// Raises the soft limit on open descriptors to the hard limit, since each client takes a
/// descriptor. Children forked later get the old limit back, since some use select(2), which cannot
/// handle descriptors from FD_SETSIZE on; children that macOS spawns keep the raised one. Call
/// once, while there is only one thread. Returns the limit in force: the old one if raising it
/// fails, 0 if it cannot be read.
std::size_t raiseOpenFileLimit();

} // namespace brevane
