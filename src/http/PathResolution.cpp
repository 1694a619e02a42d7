// SPDX-License-Identifier: MIT
#include "PathResolution.h"

#include "Path.h"

#include <sys/stat.h>

namespace brevane {

std::optional<std::string> resolvedPath(std::string_view root, std::string_view requestPath) {
    std::string path = standardizedPath(root, requestPath);
    if (!path.starts_with(root)) return std::nullopt;
    return path;
}

PathKind kindOf(const std::string& path) {
    struct stat found {};
    if (path.contains('\0') || ::stat(path.c_str(), &found) != 0) return PathKind::nothing;
    if (S_ISREG(found.st_mode)) return PathKind::file;
    return S_ISDIR(found.st_mode) ? PathKind::folder : PathKind::other;
}

} // namespace brevane
