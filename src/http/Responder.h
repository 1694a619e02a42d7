// SPDX-License-Identifier: MIT
#pragma once

#include "RequestHead.h"
#include "Response.h"

#include <string>

namespace brevane {

/// The answer to a request for something below `root`, a standardized path. Looks at the disk.
[[nodiscard]] Response respond(const RequestHead& request, const std::string& root);

} // namespace brevane
