// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace brevane {

/// The media type (RFC 9110, section 8.3.1) that goes with the path's extension, upper and lower
/// case alike; "application/octet-stream" for every extension that is not known.
[[nodiscard]] std::string_view mimeType(std::string_view path);

} // namespace brevane
