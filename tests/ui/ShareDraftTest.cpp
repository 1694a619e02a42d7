// SPDX-License-Identifier: MIT
#include "ShareDraft.h"

#include <gtest/gtest.h>

#include <string>

namespace brevane::test {
namespace {

constexpr auto host = "h.tail.ts.net";

TEST(CommandPreview, AFileAtTheRootPathIsPreviewedUnderItsName) {
    EXPECT_EQ(commandPreview({.sourceType = SourceType::file, .source = "/tmp/a/report.pdf"}, host),
              "Serves /tmp/a/report.pdf\nat https://h.tail.ts.net/report.pdf");
}

TEST(CommandPreview, AFileAtAnotherPathIsPreviewedThere) {
    EXPECT_EQ(
        commandPreview(
            {.sourceType = SourceType::file, .source = "/tmp/a/report.pdf", .urlPath = "/docs"},
            host),
        "Serves /tmp/a/report.pdf\nat https://h.tail.ts.net/docs");
}

TEST(CommandPreview, AFilesFinalSlashDoesNotCount) {
    EXPECT_EQ(
        commandPreview({.sourceType = SourceType::file, .source = "/tmp/a/report.pdf/"}, host),
        "Serves /tmp/a/report.pdf/\nat https://h.tail.ts.net/report.pdf");
}

TEST(CommandPreview, AFolderGetsAFinalSlash) {
    EXPECT_EQ(commandPreview({.sourceType = SourceType::directory, .source = "/srv/site"}, host),
              "Serves /srv/site/\nat https://h.tail.ts.net/");
}

TEST(CommandPreview, AFolderWithAFinalSlashGetsNoSecondOne) {
    EXPECT_EQ(commandPreview({.sourceType = SourceType::directory, .source = "/srv/site/"}, host),
              "Serves /srv/site/\nat https://h.tail.ts.net/");
}

TEST(CommandPreview, AnEmptyPathOfAFileStaysEmpty) {
    EXPECT_EQ(
        commandPreview({.sourceType = SourceType::file, .source = "/a/b", .urlPath = ""}, host),
        "Serves /a/b\nat https://h.tail.ts.net");
}

TEST(CommandPreview, APortInTheBackground) {
    EXPECT_EQ(commandPreview({.source = "3000"}, host), "tailscale serve --bg --yes 3000");
}

TEST(CommandPreview, InTheForegroundTheWordIsLeftOut) {
    EXPECT_EQ(
        commandPreview({.mode = ServeMode::funnel, .source = "3000", .background = false}, host),
        "tailscale funnel --yes 3000");
}

TEST(CommandPreview, AnotherPathThanTheRootIsSet) {
    EXPECT_EQ(commandPreview({.source = "3000", .urlPath = "/api"}, host),
              "tailscale serve --bg --set-path /api --yes 3000");
    EXPECT_EQ(commandPreview({.source = "3000", .urlPath = ""}, host),
              "tailscale serve --bg --yes 3000");
}

TEST(CommandPreview, ATextWithBlanksIsNotQuoted) {
    EXPECT_EQ(commandPreview({.sourceType = SourceType::text, .source = "Hello, big World!"}, host),
              "tailscale serve --bg --yes text:Hello, big World!");
}

TEST(CommandPreview, AnInsecureServerIsNamedByItsPort) {
    EXPECT_EQ(commandPreview({.sourceType = SourceType::httpsInsecure, .source = "8443"}, host),
              "tailscale serve --bg --yes https+insecure://localhost:8443");
}

TEST(CommandPreview, ATcpForwardIsTwoWords) {
    EXPECT_EQ(commandPreview({.sourceType = SourceType::tcpForward, .source = "2222"}, host),
              "tailscale serve --bg --yes --tcp=2222 localhost:2222");
}

TEST(CommandPreview, APathTypedEarlierShowsForATcpForwardToo) {
    EXPECT_EQ(commandPreview(
                  {.sourceType = SourceType::tcpForward, .source = "22", .urlPath = "/ssh"}, host),
              "tailscale serve --bg --set-path /ssh --yes --tcp=22 localhost:22");
}

TEST(CommandPreview, ThePortIsShownAsTyped) {
    EXPECT_EQ(commandPreview({.source = " 3000 "}, host), "tailscale serve --bg --yes  3000 ");
}

TEST(MountPathWord, APlainPathIsHandedOverAsTyped) {
    for (const std::string path : {"/", "", "/api", "api", "/a-b_c.d,e:f@g%h+1", "/Grüße"})
        for (const SourceType type : allSourceTypes)
            EXPECT_EQ(mountPathWord({.sourceType = type, .source = "/tmp/a.pdf", .urlPath = path}),
                      path);
}

TEST(MountPathWord, APathThatTheShellWouldSplitOrInterpretIsQuoted) {
    for (const SourceType type : allSourceTypes) {
        const auto word = [type](const std::string& path) {
            return mountPathWord({.sourceType = type, .source = "/tmp/a.pdf", .urlPath = path});
        };
        EXPECT_EQ(word("/my docs"), "'/my docs'");
        EXPECT_EQ(word("/it's"), R"('/it'\''s')");
        EXPECT_EQ(word("/$(touch x)"), "'/$(touch x)'");
        EXPECT_EQ(word(" /"), "' /'");
        EXPECT_EQ(word("/a\nb"), "'/a\nb'");
    }
}

TEST(MountPathWord, EveryCharacterOfTheShellIsQuoted) {
    for (const char character : std::string(" \t\n!\"#$&'()*;<=>?[\\]^`{|}~"))
        EXPECT_TRUE(mountPathWord({.source = "3000", .urlPath = std::string("/") + character})
                        .ends_with("'"))
            << character;
}

TEST(MountPathWord, AFileAtTheRootPathIsQuotedByItsName) {
    const auto word = [](const std::string& source) {
        return mountPathWord({.sourceType = SourceType::file, .source = source});
    };
    EXPECT_EQ(word("/tmp/my files/report.pdf"), "/");
    EXPECT_EQ(word("/tmp/my report.pdf"), "'/my report.pdf'");
    EXPECT_EQ(word(" /tmp/my report.pdf \t"), "'/my report.pdf'");
    EXPECT_EQ(word("/tmp/$(touch x).pdf"), "'/$(touch x).pdf'");
}

TEST(MountPathWord, OnlyAFileIsNamedInItsPath) {
    for (const SourceType type : allSourceTypes)
        if (type != SourceType::file) {
            EXPECT_EQ(mountPathWord({.sourceType = type, .source = "/tmp/my report.pdf"}), "/");
        }
}

TEST(CanStart, NothingStartsWithoutASource) {
    for (const SourceType type : allSourceTypes)
        EXPECT_FALSE(canStart({.sourceType = type, .source = ""})) << rawValue(type);
}

TEST(CanStart, AFileOrFolderOfBlanksCountsAsEmpty) {
    EXPECT_FALSE(canStart({.sourceType = SourceType::file, .source = " \t "}));
    EXPECT_FALSE(canStart({.sourceType = SourceType::directory, .source = "  "}));
    EXPECT_TRUE(canStart({.sourceType = SourceType::directory, .source = " /srv "}));
}

TEST(CanStart, EveryOtherSourceMayBeBlanks) {
    EXPECT_TRUE(canStart({.sourceType = SourceType::text, .source = " "}));
    EXPECT_TRUE(canStart({.sourceType = SourceType::port, .source = " "}));
}

} // namespace
} // namespace brevane::test
