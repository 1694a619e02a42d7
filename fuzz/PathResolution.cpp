// SPDX-License-Identifier: MIT
#include "PathResolution.h"
#include "FuzzTarget.h"
#include "Path.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The input is the root, a line feed and the requested path.
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t lineEnd = std::min(input.find('\n'), size);
    const std::string root = brevane::standardizedPath("/" + std::string(input.substr(0, lineEnd)));
    const auto path = brevane::resolvedPath(root, input.substr(std::min(lineEnd + 1, size)));
    if (!path) return 0;
    require(path->starts_with(root) && !path->contains("//"));
    require(*path == "/" || !path->ends_with('/'));
    const std::string framed = *path + "/";
    require(!framed.contains("/./") && !framed.contains("/../"));
    return 0;
}
