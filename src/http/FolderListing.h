// SPDX-License-Identifier: MIT
#pragma once

#include "FolderEntries.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace brevane {

/// A generated HTML page of what is in a folder (hidden entries left out), folders first. A folder
/// that cannot be read gives a page without entries. All names stand as they are.
class FolderListing {
public:
    /// `urlPath` is the folder's path as asked for; it must outlive the page.
    FolderListing(const std::string& folder, std::string_view urlPath);

    [[nodiscard]] std::size_t size() const;
    /// Writes the page, `size` bytes.
    void write(char* begin) const;

private:
    FolderEntries entries;
    std::string_view urlPath;
};

} // namespace brevane
