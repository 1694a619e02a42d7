// SPDX-License-Identifier: MIT
#include "Path.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>

namespace brevane {

namespace {

std::string_view withoutFinalSlashes(std::string_view path) {
    while (path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

} // namespace

std::string standardizedPath(std::string_view path) {
    if (path.starts_with('/')) return standardizedPath("/", path);
    std::error_code unknown;
    return standardizedPath(std::filesystem::current_path(unknown).native(), path);
}

std::string standardizedPath(std::string_view folder, std::string_view path) {
    std::string standardized; // without a trailing slash, so "/" is empty
    standardized.reserve(folder.size() + path.size() + 1);
    if (folder != "/") standardized = folder;
    while (!path.empty()) {
        const std::string_view component = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(component.size() + 1, path.size()));
        if (component.empty() || component == ".") continue;
        if (component != "..")
            standardized.append("/").append(component);
        else if (!standardized.empty())
            standardized.resize(standardized.rfind('/'));
    }
    return standardized.empty() ? "/" : standardized;
}

std::string_view lastPathComponent(std::string_view path) {
    const std::string_view trimmed = withoutFinalSlashes(path);
    if (trimmed.empty()) return path.substr(0, 1);
    return trimmed.substr(trimmed.rfind('/') + 1);
}

std::string_view parentFolder(std::string_view path) {
    const std::string_view trimmed = withoutFinalSlashes(path);
    if (trimmed.empty()) return path.substr(0, 1);
    const std::size_t slash = trimmed.rfind('/');
    if (slash == std::string_view::npos) return {};
    const std::string_view parent = withoutFinalSlashes(trimmed.substr(0, slash));
    return parent.empty() ? trimmed.substr(0, 1) : parent;
}

std::string_view pathExtension(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view{} : name.substr(dot + 1);
}

} // namespace brevane
