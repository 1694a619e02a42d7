// SPDX-License-Identifier: MIT
#include "FolderListing.h"

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

} // namespace

FolderListing::FolderListing(const std::string& folder, std::string_view path)
    : entries(folder), urlPath(path) {}

std::size_t FolderListing::size() const {
    return title.size() + style.size() + list.size() + end.size() + 2 * urlPath.size() +
           (urlPath == "/" ? 0 : parent.size()) + folderLineSize * entries.folders.size() +
           2 * entries.folders.byteCount() + fileLineSize * entries.files.size() +
           2 * entries.files.byteCount();
}

void FolderListing::write(char* next) const {
    next = put(next, title, urlPath, style, urlPath, list);
    if (urlPath != "/") next = put(next, parent);
    for (std::size_t index = 0; index < entries.folders.size(); ++index) {
        const std::string_view name = entries.folders[index];
        next = put(next, lineStart, name, slash, folderIcon, name, slash, lineEnd);
    }
    for (std::size_t index = 0; index < entries.files.size(); ++index) {
        const std::string_view name = entries.files[index];
        next = put(next, lineStart, name, fileIcon, name, lineEnd);
    }
    put(next, end);
}

} // namespace brevane
