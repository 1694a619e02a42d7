// SPDX-License-Identifier: MIT
#include "CommandBuilding.h"

#include "Text.h"

#include <gtest/gtest.h>

#include <string>

namespace brevane::test {
namespace {

std::string add(ServeMode mode, SourceType type, const std::string& source,
                const std::string& urlPath, bool background) {
    return buildAddCommand("BIN", mode, type, source, urlPath, background);
}

TEST(BuildAddCommand, PassesAPortOn) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::port, "3000", "/", false), "BIN serve --yes 3000");
}

TEST(BuildAddCommand, TrimsTheSourceAndNamesTheMountPath) {
    EXPECT_EQ(add(ServeMode::funnel, SourceType::port, " localhost:3000 ", "/api", true),
              "BIN funnel --bg --set-path /api --yes localhost:3000");
}

TEST(BuildAddCommand, PassesAUrlOnVerbatim) {
    EXPECT_EQ(
        add(ServeMode::serve, SourceType::port, "http://127.0.0.1:3000/api?a=1&b=2;c", "", false),
        "BIN serve --yes http://127.0.0.1:3000/api?a=1&b=2;c");
}

TEST(BuildAddCommand, NamesTheInsecureScheme) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::httpsInsecure, "8443", "/", true),
              "BIN serve --bg --yes https+insecure://localhost:8443");
}

TEST(BuildAddCommand, QuotesOnlyATextThatNeedsIt) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::text, "OK", "/health", false),
              "BIN serve --set-path /health --yes text:OK");
    EXPECT_EQ(add(ServeMode::funnel, SourceType::text, "hello world", "/", false),
              "BIN funnel --yes text:'hello world'");
}

TEST(BuildAddCommand, ForwardsTheSameTcpPortOnBothSides) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::tcpForward, "5432", "/", true),
              "BIN serve --bg --yes --tcp=5432 localhost:5432");
}

TEST(BuildAddCommand, GivesTcpForwardsTheMountPathToo) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::tcpForward, "22", "/a", false),
              "BIN serve --set-path /a --yes --tcp=22 localhost:22");
}

TEST(BuildAddCommand, GivesFilesAndFoldersNoTarget) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::file, "/a", "/", false), "BIN serve --yes");
    EXPECT_EQ(add(ServeMode::serve, SourceType::directory, "/a", "/", false), "BIN serve --yes");
}

TEST(BuildAddCommand, TakesTheRootAndTheEmptyPathAsNoMountPath) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::port, "1", "/", false), "BIN serve --yes 1");
    EXPECT_EQ(add(ServeMode::serve, SourceType::port, "1", "", false), "BIN serve --yes 1");
}

TEST(BuildAddCommand, PassesAnyOtherMountPathOnAsItIs) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::port, "1", "api", false),
              "BIN serve --set-path api --yes 1");
    EXPECT_EQ(add(ServeMode::serve, SourceType::port, "1", " /", false),
              "BIN serve --set-path  / --yes 1");
}

TEST(BuildAddCommand, EndsInABlankWhereThereIsNoSource) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::port, "", "/", false), "BIN serve --yes ");
    EXPECT_EQ(add(ServeMode::serve, SourceType::port, " \t ", "/", false), "BIN serve --yes ");
}

TEST(BuildAddCommand, KeepsALineBreakAtTheEndOfTheSource) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::port, "3000\n", "/", false),
              "BIN serve --yes 3000\n");
}

TEST(BuildAddCommand, GivesAnEmptyTextTheBareWord) {
    EXPECT_EQ(add(ServeMode::serve, SourceType::text, "  ", "/", false), "BIN serve --yes text:");
}

TEST(BuildPortServeCommand, EndsInTheDecimalPort) {
    EXPECT_EQ(buildPortServeCommand("BIN", ServeMode::serve, 52731, "/report.pdf", true),
              "BIN serve --bg --set-path /report.pdf --yes 52731");
    EXPECT_EQ(buildPortServeCommand("BIN", ServeMode::funnel, 52731, "/", false),
              "BIN funnel --yes 52731");
}

} // namespace
} // namespace brevane::test
