// SPDX-License-Identifier: MIT
#pragma once

#include "NameList.h"

#include <string>

namespace brevane {

/// What is in a folder, hidden files left out, in the order of a listing: folders, then all else,
/// each by name in code-point order. A symbolic link is no folder.
struct FolderEntries {
    /// Reads the folder; nothing where that fails.
    explicit FolderEntries(const std::string& path);

    NameList folders;
    NameList files;
};

} // namespace brevane
