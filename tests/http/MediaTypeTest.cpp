// SPDX-License-Identifier: MIT
#include "MediaType.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace brevane::test {
namespace {

TEST(MimeType, EveryKnownExtensionHasItsTypeInUpperAndLowerCase) {
    const std::map<std::string, std::string> known{
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
    };
    for (const auto& [extension, type] : known) {
        EXPECT_EQ(mimeType("/a/b." + extension), type);
        std::string upper = extension;
        for (char& letter : upper)
            if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
        EXPECT_EQ(mimeType("/a/B." + upper), type);
    }
    EXPECT_EQ(mimeType("Photo.JPG"), "image/jpeg");
    EXPECT_EQ(mimeType("/.html"), "text/html; charset=utf-8");
}

TEST(MimeType, EverythingElseIsAnOctetStream) {
    for (const std::string name : {"archive.tar.gz", "README", "a.", "a.txt.", "a.htmlx", "a.xhtml",
                                   "a.tx", "a.jpe", "a.wasm", "a.md", "a.csv", "a.avif", "a.txt~",
                                   "a.html ", "txt", "a.html/b", "", "/", "a.T\u212AT"})
        EXPECT_EQ(mimeType(name), "application/octet-stream") << name;
}

} // namespace
} // namespace brevane::test
