// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace brevane {

// Lexical operations on paths, as in RFC 3986, section 5.2.4: no file is accessed and no symbolic
// link is followed. A path is a sequence of bytes; trailing slashes are not a component.

/// The absolute path with "." and ".." resolved and repeated and trailing slashes removed; ".." at
/// "/" stays there. A relative path is resolved against the current folder. "/" is the only result
/// that ends in a slash.
[[nodiscard]] std::string standardizedPath(std::string_view path);

/// The same for "FOLDER/PATH"; `folder` must be standardized.
[[nodiscard]] std::string standardizedPath(std::string_view folder, std::string_view path);

/// The last component: "b" for "/a/b" and "/a/b/", "/" for "/", empty for the empty path.
[[nodiscard]] std::string_view lastPathComponent(std::string_view path);

/// The path without its last component: "/a" for "/a/b" and "/a/b/", "/" for "/a" and "/", empty
/// (the current folder) for "b".
[[nodiscard]] std::string_view parentFolder(std::string_view path);

/// The text after the last dot of the last component, empty if there is no dot or nothing after it.
/// The extension of ".html" is "html".
[[nodiscard]] std::string_view pathExtension(std::string_view path);

} // namespace brevane
