// SPDX-License-Identifier: MIT
#include "Published.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevane::test {
namespace {

TEST(Published, StartsWithTheGivenOrTheDefaultValue) {
    EXPECT_EQ(Published<int>(7).get(), 7);
    EXPECT_EQ(Published<int>().get(), 0);
    EXPECT_FALSE(Published<bool>().get());
    EXPECT_EQ(Published<std::optional<std::string>>().get(), std::nullopt);
}

TEST(Published, AnnouncesBeforeTheNewValueTakesEffect) {
    Published<std::string> name("old");
    std::vector<std::string> seen;
    const auto subscription = name.willChange.subscribe([&] { seen.push_back(name.get()); });
    name.set("new");
    EXPECT_EQ(seen, std::vector<std::string>{"old"});
    EXPECT_EQ(*name, "new");
    EXPECT_EQ(name->size(), 3U);
}

TEST(Published, AnnouncesAnEqualAssignmentToo) {
    Published<int> number(1);
    int announcements = 0;
    const auto subscription = number.willChange.subscribe([&] { ++announcements; });
    number.set(1);
    number.set(1);
    EXPECT_EQ(announcements, 2);
}

TEST(Published, AcceptsItsOwnValue) {
    Published<std::string> text(std::string(100, 'x'));
    text.set(text.get());
    EXPECT_EQ(text.get(), std::string(100, 'x'));
}

TEST(Published, TakesValuesThatCanOnlyBeMoved) {
    Published<std::unique_ptr<int>> number;
    number.set(std::make_unique<int>(3));
    EXPECT_EQ(**number, 3);
}

} // namespace
} // namespace brevane::test
