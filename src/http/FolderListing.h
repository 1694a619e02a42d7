// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace brevane {

/// The HTML page that lists what is in `folder`: folders, then files, each by name in code-point
/// order; hidden files are left out. Names and `urlPath` stand as they are, the names as the file
/// system's own bytes. A symbolic link is a file. A folder that cannot be read has nothing in it.
[[nodiscard]] std::string folderListing(const std::string& folder, std::string_view urlPath);

} // namespace brevane
