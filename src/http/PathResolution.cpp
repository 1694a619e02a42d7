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

bool hasDotSegment(std::string_view path) {
    for (;;) {
        const std::size_t end = path.find('/');
        const std::string_view segment = path.substr(0, end);
        if (segment == "." || segment == "..") return true;
        if (end == path.npos) return false;
        path.remove_prefix(end + 1);
    }
}

PathKind kindOf(const std::string& path) {
    struct stat found {};
    if (path.contains('\0') || ::stat(path.c_str(), &found) != 0) return PathKind::nothing;
    if (S_ISREG(found.st_mode)) return PathKind::file;
    return S_ISDIR(found.st_mode) ? PathKind::folder : PathKind::other;
}

} // namespace brevane
