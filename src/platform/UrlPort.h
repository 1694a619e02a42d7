// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace brevane {

/// The port that a URL (RFC 3986) names explicitly: 3000 of "http://127.0.0.1:3000/api", none of
/// "http://localhost/", of "localhost:3000" (a scheme and a path), and of what is not a URL.
[[nodiscard]] std::optional<std::int64_t> explicitPort(std::string_view url);

} // namespace brevane
