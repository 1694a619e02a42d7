// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <sys/types.h>

namespace brevane {

/// A descriptor that poll reports as readable once a child of ours has exited. Does not reap it.
/// A closed one where the operating system has none to give, also because the child has exited.
[[nodiscard]] Descriptor watchExit(pid_t child);

/// Whether a child of ours has exited, or is gone altogether. Does not reap it.
[[nodiscard]] bool hasExited(pid_t child);

} // namespace brevane
