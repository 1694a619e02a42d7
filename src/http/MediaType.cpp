// SPDX-License-Identifier: MIT
#include "MediaType.h"

#include "AsciiCase.h"
#include "Path.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brevane {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 24> mediaTypes{{
    {"html", "text/html; charset=utf-8"},
    {"htm", "text/html; charset=utf-8"},
    {"css", "text/css"},
    {"js", "application/javascript"},
    {"mjs", "application/javascript"},
    {"json", "application/json"},
    {"png", "image/png"},
    {"jpg", "image/jpeg"},
    {"jpeg", "image/jpeg"},
    {"gif", "image/gif"},
    {"svg", "image/svg+xml"},
    {"ico", "image/x-icon"},
    {"webp", "image/webp"},
    {"pdf", "application/pdf"},
    {"txt", "text/plain; charset=utf-8"},
    {"xml", "application/xml"},
    {"woff", "font/woff"},
    {"woff2", "font/woff2"},
    {"ttf", "font/ttf"},
    {"mp4", "video/mp4"},
    {"webm", "video/webm"},
    {"mp3", "audio/mpeg"},
    {"ogg", "audio/ogg"},
    {"zip", "application/zip"},
}};

} // namespace

std::string_view mimeType(std::string_view path) {
    const std::string_view extension = pathExtension(path);
    const auto* const found = std::ranges::find_if(mediaTypes, [extension](const auto& known) {
        return equalsIgnoringCase(extension, known.first);
    });
    return found == mediaTypes.end() ? "application/octet-stream" : found->second;
}

} // namespace brevane
