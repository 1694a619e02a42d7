// SPDX-License-Identifier: MIT
#include "FolderListing.h"

#include "FolderEntries.h"

#include <algorithm>

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
constexpr std::string_view lineEnd = "</a></li>\n";
constexpr std::size_t lineSize =
    lineStart.size() + std::max(folderIcon.size(), fileIcon.size()) + lineEnd.size() + 2;

} // namespace

std::string folderListing(const std::string& folder, std::string_view urlPath) {
    const FolderEntries entries(folder);
    const std::size_t most = title.size() + style.size() + list.size() + parent.size() +
                             end.size() + 2 * urlPath.size() + 2 * entries.nameBytes() +
                             lineSize * entries.size();
    std::string page;
    page.resize_and_overwrite(most, [&](char* const begin, std::size_t) {
        char* next = begin;
        const auto put = [&next](auto... texts) {
            ((next = std::ranges::copy(std::string_view(texts), next).out), ...);
        };
        put(title, urlPath, style, urlPath, list);
        if (urlPath != "/") put(parent);
        for (std::size_t index = 0; index < entries.size(); ++index) {
            const auto [name, isFolder] = entries[index];
            if (isFolder)
                put(lineStart, name, "/", folderIcon, name, "/", lineEnd);
            else
                put(lineStart, name, fileIcon, name, lineEnd);
        }
        put(end);
        return next - begin;
    });
    return page;
}

} // namespace brevane
