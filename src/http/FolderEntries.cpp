// SPDX-License-Identifier: MIT
#include "FolderEntries.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <memory>

namespace brevane {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

bool isFolder(DIR* folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
    struct stat found {};
    return ::fstatat(::dirfd(folder), entry.d_name, &found, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(found.st_mode);
}

bool isHidden([[maybe_unused]] DIR* folder, const dirent& entry) {
#ifdef __APPLE__
    struct stat found {};
    if (::fstatat(::dirfd(folder), entry.d_name, &found, AT_SYMLINK_NOFOLLOW) == 0 &&
        (found.st_flags & UF_HIDDEN) != 0)
        return true;
#endif
    return entry.d_name[0] == '.';
}

} // namespace

FolderEntries::FolderEntries(const std::string& path) {
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(path.c_str()));
    if (!folder) return;
    while (const dirent* const entry = ::readdir(folder.get()))
        if (!isHidden(folder.get(), *entry))
            (isFolder(folder.get(), *entry) ? folders : files).add(entry->d_name);
    // Bytes of UTF-8 sort as the characters that they encode.
    folders.sort();
    files.sort();
}

} // namespace brevane
