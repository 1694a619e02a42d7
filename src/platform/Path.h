// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace brevane {

// Paths as text, in the way of RFC 3986, section 5.2.4: the disk is never touched and symbolic
// links are never followed. A path is bytes; slashes at its end do not count as a component.

/// The absolute path with "." and ".." resolved, repeated and final slashes removed; ".." at "/"
/// stays there. A relative path starts at the current folder. "/" is the only result that ends in
/// a slash.
[[nodiscard]] std::string standardizedPath(std::string_view path);

/// The same of "FOLDER/PATH", for a folder whose path is standardized.
[[nodiscard]] std::string standardizedPath(std::string_view folder, std::string_view path);

/// The last component: "b" of "/a/b" and of "/a/b/"; "/" of "/"; empty of the empty path.
[[nodiscard]] std::string_view lastPathComponent(std::string_view path);

/// The path without its last component: "/a" of "/a/b" and "/a/b/"; "/" of "/a" and "/"; the empty
/// path, that is the current folder, of "b".
[[nodiscard]] std::string_view parentFolder(std::string_view path);

/// The text after the last dot of the last component: empty where there is no dot or nothing after
/// it. The extension of ".html" is "html".
[[nodiscard]] std::string_view pathExtension(std::string_view path);

} // namespace brevane
