// SPDX-License-Identifier: MIT
#include "FolderListing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <numeric>

namespace brevane {

namespace {

constexpr std::string_view title = "<!DOCTYPE html><html>\n"
                                   "<head><meta charset=\"utf-8\"><title>Index of ";
constexpr std::string_view style =
    "</title>\n"
    "<style>body{font-family:system-ui,sans-serif;padding:20px 40px;max-width:800px}\n"
    "h1{font-size:1.2em;color:#333}ul{list-style:none;padding:0}\n"
    "li{padding:4px 0;border-bottom:1px solid #f0f0f0}\n"
    "a{color:#0066cc;text-decoration:none}a:hover{text-decoration:underline}</style>\n"
    "</head><body><h1>Index of ";
constexpr std::string_view list = "</h1><ul>";
constexpr std::string_view parent = "<li><a href=\"../\">📁 ../</a></li>\n";
constexpr std::string_view end = "</ul></body></html>";

constexpr std::string_view lineStart = "<li><a href=\"";
constexpr std::string_view folderIcon = "\">📁 ";
constexpr std::string_view fileIcon = "\">📄 ";
constexpr std::string_view slash = "/";
constexpr std::string_view lineEnd = "</a></li>\n";
constexpr std::size_t folderLineSize =
    lineStart.size() + folderIcon.size() + lineEnd.size() + 2 * slash.size();
constexpr std::size_t fileLineSize = lineStart.size() + fileIcon.size() + lineEnd.size();

char* put(char* next, const auto&... texts) {
    ((next += texts.copy(next, texts.size())), ...);
    return next;
}

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

// From this many names on, a radix sort of the keys is faster than comparing.
constexpr std::size_t manyNames = 256;

// The first 8 bytes as a big-endian number, which compares as the bytes do.
std::uint64_t keyOf(std::string_view name) {
    std::uint64_t key = 0;
    std::memcpy(&key, name.data(), std::min(name.size(), sizeof key));
    return std::endian::native == std::endian::little ? std::byteswap(key) : key;
}

} // namespace

void FolderListing::Names::add(std::string_view name) {
    records_.push_back({.key = 0, .offset = bytes_.size(), .length = name.size()});
    bytes_ += name;
}

void FolderListing::Names::sort() {
    if (records_.empty()) return;
    // The bytes after the common prefix distinguish more of the names.
    std::string_view shared = nameOf(records_.front());
    for (const Record& record : records_) {
        const std::string_view name = nameOf(record);
        if (name.starts_with(shared)) continue;
        shared = {shared.begin(), std::ranges::mismatch(shared, name).in1};
    }
    for (Record& record : records_)
        record.key = keyOf(nameOf(record).substr(shared.size()));

    const auto isBefore = [this](const Record& one, const Record& other) {
        return one.key != other.key ? one.key < other.key : nameOf(one) < nameOf(other);
    };
    if (records_.size() < manyNames) {
        std::ranges::sort(records_, isBefore);
        return;
    }
    sortByKey();
    for (auto begin = records_.begin(); begin != records_.end();) {
        const auto other =
            std::find_if(begin, records_.end(),
                         [key = begin->key](const Record& record) { return record.key != key; });
        std::sort(begin, other, isBefore);
        begin = other;
    }
}

void FolderListing::Names::sortByKey() {
    std::uint64_t differing = 0;
    for (const Record& record : records_)
        differing |= record.key ^ records_.front().key;
    std::vector<Record> sorted(records_.size());
    for (unsigned shift = 0; shift < 64; shift += 8) {
        if ((differing >> shift & 0xFF) == 0) continue;
        const auto byteOf = [shift](const Record& record) { return record.key >> shift & 0xFF; };
        std::array<std::size_t, 256> places{};
        for (const Record& record : records_)
            ++places[byteOf(record)];
        std::exclusive_scan(places.begin(), places.end(), places.begin(), std::size_t{0});
        for (const Record& record : records_)
            sorted[places[byteOf(record)]++] = record;
        records_.swap(sorted);
    }
}

FolderListing::FolderListing(const std::string& path, std::string_view urlPath)
    : urlPath_(urlPath) {
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(path.c_str()));
    if (!folder) return;
    while (const dirent* const entry = ::readdir(folder.get()))
        if (!isHidden(folder.get(), *entry))
            (isFolder(folder.get(), *entry) ? folders_ : files_).add(entry->d_name);
    // UTF-8 sorts bytewise in code-point order.
    folders_.sort();
    files_.sort();
}

std::size_t FolderListing::size() const {
    return title.size() + style.size() + list.size() + end.size() + 2 * urlPath_.size() +
           (urlPath_ == "/" ? 0 : parent.size()) + folderLineSize * folders_.size() +
           2 * folders_.byteCount() + fileLineSize * files_.size() + 2 * files_.byteCount();
}

void FolderListing::write(char* next) const {
    next = put(next, title, urlPath_, style, urlPath_, list);
    if (urlPath_ != "/") next = put(next, parent);
    for (std::size_t index = 0; index < folders_.size(); ++index) {
        const std::string_view name = folders_[index];
        next = put(next, lineStart, name, slash, folderIcon, name, slash, lineEnd);
    }
    for (std::size_t index = 0; index < files_.size(); ++index) {
        const std::string_view name = files_[index];
        next = put(next, lineStart, name, fileIcon, name, lineEnd);
    }
    put(next, end);
}

} // namespace brevane
