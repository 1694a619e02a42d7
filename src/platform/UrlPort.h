// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace brevane {

/// The explicit port of a URL (RFC 3986): 3000 for "http://127.0.0.1:3000/api"; nullopt for
/// "http://localhost/", for "localhost:3000" (a scheme and a path) and for anything that is not a
/// URL.
[[nodiscard]] std::optional<std::int64_t> explicitPort(std::string_view url);

} // namespace brevane
