// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace brevane {

/// The media type (RFC 9110, section 8.3.1) for the path's extension, compared case-insensitively;
/// "application/octet-stream" for unknown extensions.
[[nodiscard]] std::string_view mimeType(std::string_view path);

} // namespace brevane
