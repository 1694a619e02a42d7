// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// Maps the path of a request below `root`, a standardized path, resolving "." and ".." lexically,
/// without regard to symbolic links. Returns nullopt if the result does not begin with the text of
/// `root`; a sibling folder whose name begins with the root's name passes.
[[nodiscard]] std::optional<std::string> resolvedPath(std::string_view root,
                                                      std::string_view requestPath);

/// Whether "." or ".." is one of the path's components.
[[nodiscard]] bool hasDotSegment(std::string_view path);

enum class PathKind { nothing, file, folder, other };

/// What exists at the path, following symbolic links: nothing if stat(2) fails or the path contains
/// a NUL.
[[nodiscard]] PathKind kindOf(const std::string& path);

} // namespace brevane
