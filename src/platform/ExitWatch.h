// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <sys/types.h>

#include <expected>
#include <system_error>

namespace brevane {

/// A descriptor that poll reports as readable once a child of ours has exited; a closed one if it
/// has already. Does not reap it. The error of the operating system where there can be none.
[[nodiscard]] std::expected<Descriptor, std::error_code> watchExit(pid_t child);

} // namespace brevane
