// SPDX-License-Identifier: MIT
#include "Path.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace brevane::test {
namespace {

TEST(StandardizedPath, ResolvesDotSegments) {
    EXPECT_EQ(standardizedPath("/a/./b"), "/a/b");
    EXPECT_EQ(standardizedPath("/a/../b"), "/b");
    EXPECT_EQ(standardizedPath("/a/b/c/../.."), "/a");
    EXPECT_EQ(standardizedPath("/a/b/."), "/a/b");
    EXPECT_EQ(standardizedPath("/mid/content=5/../6"), "/mid/6");
}

TEST(StandardizedPath, StaysAtTheRoot) {
    EXPECT_EQ(standardizedPath("/"), "/");
    EXPECT_EQ(standardizedPath("/.."), "/");
    EXPECT_EQ(standardizedPath("/../../etc"), "/etc");
    EXPECT_EQ(standardizedPath("/a/../.."), "/");
    EXPECT_EQ(standardizedPath("/."), "/");
}

TEST(StandardizedPath, RemovesRepeatedAndFinalSlashes) {
    EXPECT_EQ(standardizedPath("/a/b/"), "/a/b");
    EXPECT_EQ(standardizedPath("//a///b//"), "/a/b");
    EXPECT_EQ(standardizedPath("///"), "/");
}

TEST(StandardizedPath, LeavesNamesThatOnlyLookLikeDotSegments) {
    EXPECT_EQ(standardizedPath("/.../..a/.b/c./ "), "/.../..a/.b/c./ ");
}

TEST(StandardizedPath, StartsARelativePathAtTheCurrentFolder) {
    const std::string here = std::filesystem::current_path().native();
    EXPECT_EQ(standardizedPath("a/./b"), here + "/a/b");
    EXPECT_EQ(standardizedPath(""), here);
    EXPECT_EQ(standardizedPath("x/.."), here);
}

TEST(StandardizedPath, BelowAFolderIsThatOfTheJoinedPath) {
    EXPECT_EQ(standardizedPath("/a/b", "c"), "/a/b/c");
    EXPECT_EQ(standardizedPath("/a/b", "/c//./d/"), "/a/b/c/d");
    EXPECT_EQ(standardizedPath("/a/b", ""), "/a/b");
    EXPECT_EQ(standardizedPath("/a/b", "../c/../../d"), "/d");
    EXPECT_EQ(standardizedPath("/a/b", "../../.."), "/");
    EXPECT_EQ(standardizedPath("/", "c"), "/c");
    EXPECT_EQ(standardizedPath("/", "/"), "/");
}

TEST(StandardizedPath, KeepsBytesThatAreNotUtf8) {
    EXPECT_EQ(standardizedPath("/a\xFF/\xC3"), "/a\xFF/\xC3");
}

TEST(LastPathComponent, IsTheNameBehindTheLastSlash) {
    EXPECT_EQ(lastPathComponent("/a/b"), "b");
    EXPECT_EQ(lastPathComponent("/a"), "a");
    EXPECT_EQ(lastPathComponent("b"), "b");
}

TEST(LastPathComponent, PassesOverFinalSlashes) {
    EXPECT_EQ(lastPathComponent("/a/b/"), "b");
    EXPECT_EQ(lastPathComponent("/a/b//"), "b");
    EXPECT_EQ(lastPathComponent("b/"), "b");
}

TEST(LastPathComponent, OfTheRootIsTheRoot) {
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lastPathComponent("//"), "/");
    EXPECT_EQ(lastPathComponent(""), "");
}

TEST(ParentFolder, IsWhatStandsBeforeTheLastComponent) {
    EXPECT_EQ(parentFolder("/Users/x/notes/a.pdf"), "/Users/x/notes");
    EXPECT_EQ(parentFolder("/a/b/"), "/a");
    EXPECT_EQ(parentFolder("/a//b//"), "/a");
    EXPECT_EQ(parentFolder("a/b"), "a");
}

TEST(ParentFolder, OfAFileAtTheRootIsTheRoot) {
    EXPECT_EQ(parentFolder("/a"), "/");
    EXPECT_EQ(parentFolder("//a"), "/");
    EXPECT_EQ(parentFolder("/a/"), "/");
    EXPECT_EQ(parentFolder("/"), "/");
}

TEST(ParentFolder, OfABareNameIsTheCurrentFolder) {
    EXPECT_EQ(parentFolder("b"), "");
    EXPECT_EQ(parentFolder("b/"), "");
    EXPECT_EQ(parentFolder(""), "");
}

TEST(PathExtension, IsWhatStandsBehindTheLastDotOfTheName) {
    EXPECT_EQ(pathExtension("/a/index.html"), "html");
    EXPECT_EQ(pathExtension("archive.tar.gz"), "gz");
    EXPECT_EQ(pathExtension("/a/photo.JPG/"), "JPG");
}

TEST(PathExtension, OfAHiddenFileIsItsName) {
    EXPECT_EQ(pathExtension("/a/.html"), "html");
}

TEST(PathExtension, IsEmptyWhereThereIsNone) {
    EXPECT_EQ(pathExtension("/a/README"), "");
    EXPECT_EQ(pathExtension("/a.b/README"), "");
    EXPECT_EQ(pathExtension("/a/name."), "");
    EXPECT_EQ(pathExtension("/a/.."), "");
    EXPECT_EQ(pathExtension("/"), "");
    EXPECT_EQ(pathExtension(""), "");
}

} // namespace
} // namespace brevane::test
