// SPDX-License-Identifier: MIT
#include "FolderEntries.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
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
    if (entry.d_name[0] == '.') return true;
#ifdef __APPLE__
    struct stat found {};
    return ::fstatat(::dirfd(folder), entry.d_name, &found, AT_SYMLINK_NOFOLLOW) == 0 &&
           (found.st_flags & UF_HIDDEN) != 0;
#else
    return false;
#endif
}

// The first 8 bytes as a number; numbers compare as the bytes do.
std::uint64_t keyOf(std::string_view name) {
    std::uint64_t key = 0;
    for (std::size_t index = 0; index < sizeof key; ++index)
        key = key << 8 | (index < name.size() ? static_cast<unsigned char>(name[index]) : 0U);
    return key;
}

} // namespace

FolderEntries::FolderEntries(const std::string& path) {
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(path.c_str()));
    if (!folder) return;
    while (const dirent* const entry = ::readdir(folder.get()))
        if (!isHidden(folder.get(), *entry)) add(entry->d_name, isFolder(folder.get(), *entry));

    const auto files = std::ranges::partition(records, &Record::isFolder);
    sort({records.begin(), files.begin()});
    sort(files);
}

FolderEntries::Entry FolderEntries::operator[](std::size_t index) const {
    return {nameOf(records[index]), records[index].isFolder};
}

std::string_view FolderEntries::nameOf(const Record& record) const {
    return std::string_view(names).substr(record.offset, record.length);
}

void FolderEntries::add(std::string_view name, bool isFolder) {
    records.push_back({.key = 0,
                       .offset = names.size(),
                       .length = static_cast<std::uint16_t>(name.size()),
                       .isFolder = isFolder});
    names += name;
}

void FolderEntries::sort(std::span<Record> group) {
    if (group.empty()) return;
    // What follows the start that all names share tells more of them apart.
    const std::string_view first = nameOf(group.front());
    std::size_t shared = first.size();
    for (const Record& record : group) {
        const auto [end, otherEnd] = std::ranges::mismatch(first.substr(0, shared), nameOf(record));
        shared = static_cast<std::size_t>(end - first.begin());
    }
    for (Record& record : group)
        record.key = keyOf(nameOf(record).substr(shared));

    // Bytes of UTF-8 sort as the characters that they encode.
    std::ranges::sort(group, [this](const Record& one, const Record& other) {
        return one.key != other.key ? one.key < other.key : nameOf(one) < nameOf(other);
    });
}

} // namespace brevane
