// SPDX-License-Identifier: MIT
#include "PathResolution.h"

#include <gtest/gtest.h>

namespace brevane::test {
namespace {

TEST(ResolvedPath, LiesBelowTheRoot) {
    EXPECT_EQ(resolvedPath("/srv/site", "/a/b.txt"), "/srv/site/a/b.txt");
    EXPECT_EQ(resolvedPath("/srv/site", "a"), "/srv/site/a");
    EXPECT_EQ(resolvedPath("/srv/site", ""), "/srv/site");
    EXPECT_EQ(resolvedPath("/srv/site", "/"), "/srv/site");
    EXPECT_EQ(resolvedPath("/srv/site", "//a//b/./c/"), "/srv/site/a/b/c");
    EXPECT_EQ(resolvedPath("/", "/etc/passwd"), "/etc/passwd");
    EXPECT_EQ(resolvedPath("/", "/../../etc"), "/etc");
}

TEST(ResolvedPath, OutsideTheRootThereIsNothing) {
    EXPECT_EQ(resolvedPath("/srv/site", "/.."), std::nullopt);
    EXPECT_EQ(resolvedPath("/srv/site", "/../secret"), std::nullopt);
    EXPECT_EQ(resolvedPath("/srv/site", "/a/../../../../../.."), std::nullopt);
    EXPECT_EQ(resolvedPath("/srv/site", "/../sit"), std::nullopt);
}

TEST(ResolvedPath, ComesBackIntoTheRoot) {
    EXPECT_EQ(resolvedPath("/srv/site", "/../site/x"), "/srv/site/x");
    EXPECT_EQ(resolvedPath("/srv/site", "/../../../../srv/site"), "/srv/site");
}

TEST(ResolvedPath, ASiblingThatBeginsLikeTheRootPasses) {
    EXPECT_EQ(resolvedPath("/srv/site", "/../site2/x"), "/srv/site2/x");
}

TEST(ResolvedPath, ANulIsAnOrdinaryByteThatNoFileHas) {
    const std::string withNul("/a\0b", 4);
    EXPECT_EQ(resolvedPath("/srv", withNul), "/srv" + withNul);
    EXPECT_EQ(resolvedPath("/srv", "/../" + withNul), std::nullopt);
    EXPECT_EQ(kindOf(std::string("/tmp\0", 5)), PathKind::nothing);
}

} // namespace
} // namespace brevane::test
