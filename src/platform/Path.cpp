// SPDX-License-Identifier: MIT
#include "Path.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <vector>

namespace brevane {

namespace {

std::string_view withoutFinalSlashes(std::string_view path) {
    while (path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

} // namespace

std::string standardizedPath(std::string_view path) {
    std::string absolute;
    if (!path.starts_with('/')) {
        std::error_code unknown;
        absolute = std::filesystem::current_path(unknown).native() + '/';
    }
    absolute += path;

    std::vector<std::string_view> components;
    std::string_view rest = absolute;
    while (!rest.empty()) {
        const std::string_view component = rest.substr(0, rest.find('/'));
        rest.remove_prefix(std::min(component.size() + 1, rest.size()));
        if (component.empty() || component == ".") continue;
        if (component != "..") {
            components.push_back(component);
        } else if (!components.empty()) {
            components.pop_back();
        }
    }

    if (components.empty()) return "/";
    std::string standardized;
    for (const std::string_view component : components) {
        standardized += '/';
        standardized += component;
    }
    return standardized;
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
