// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// Where the path of a request leads: below `root`, an absolute path without "." and "..", with the
/// same resolved on the text, whatever symbolic links there are. Nothing where the result does not
/// begin with the text of `root`; a sibling folder whose name begins like the root's passes.
[[nodiscard]] std::optional<std::string> resolvedPath(std::string_view root,
                                                      std::string_view requestPath);

/// Whether "." or ".." is one of the path's components.
[[nodiscard]] bool hasDotSegment(std::string_view path);

enum class PathKind { nothing, file, folder, other };

/// What there is at the path, symbolic links followed. A path that cannot be examined has nothing,
/// and so has one with a NUL in it.
[[nodiscard]] PathKind kindOf(const std::string& path);

} // namespace brevane
