// SPDX-License-Identifier: MIT
#include "FolderListing.h"

#include "FolderEntries.h"

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

// More than what stands around the two names of a line.
constexpr std::size_t lineSize = 40;

} // namespace

std::string folderListing(const std::string& folder, std::string_view urlPath) {
    const FolderEntries entries(folder);
    std::string page;
    page.reserve(title.size() + style.size() + list.size() + parent.size() + end.size() +
                 2 * urlPath.size() + 2 * entries.nameBytes() + lineSize * entries.size());

    page.append(title).append(urlPath).append(style).append(urlPath).append(list);
    if (urlPath != "/") page += parent;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        const auto [name, isFolder] = entries[index];
        const std::string_view slash = isFolder ? "/" : "";
        page.append("<li><a href=\"").append(name).append(slash);
        page.append(isFolder ? "\">📁 " : "\">📄 ").append(name).append(slash);
        page.append("</a></li>\n");
    }
    return page.append(end);
}

} // namespace brevane
