// SPDX-License-Identifier: MIT
#include "UserAccount.h"

#include "DescriptorLimit.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

namespace brevane::test {
namespace {

TEST(HomeDirectory, ComesFromTheUserDatabase) {
    EXPECT_EQ(homeDirectory(), getpwuid(getuid())->pw_dir);
}

TEST(HomeDirectory, IsKeptForWhenThereIsNoDescriptorToAskWith) {
    const std::string before = homeDirectory();
    const DescriptorLimit limit(0);
    EXPECT_EQ(homeDirectory(), before);
}

TEST(HomeDirectory, DoesNotAskTheEnvironment) {
    const char* const set = getenv("HOME");
    const std::string before = set != nullptr ? set : "";
    setenv("HOME", "/nowhere", 1);
    EXPECT_EQ(homeDirectory(), getpwuid(getuid())->pw_dir);
    setenv("HOME", before.c_str(), 1);
}

} // namespace
} // namespace brevane::test
