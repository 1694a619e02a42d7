// SPDX-License-Identifier: MIT
#include "Announcement.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace brevane::test {
namespace {

static_assert(!std::is_copy_constructible_v<Subscription>);
static_assert(std::is_nothrow_move_constructible_v<Subscription>);
static_assert(!std::is_move_constructible_v<Announcement>);

TEST(Announcement, ReachesObserversInTheOrderOfSubscribing) {
    Announcement announcement;
    std::string heard;
    const auto a = announcement.subscribe([&] { heard += 'a'; });
    const auto b = announcement.subscribe([&] { heard += 'b'; });
    announcement.announce();
    announcement.announce();
    EXPECT_EQ(heard, "abab");
}

TEST(Announcement, WithoutObserversDoesNothing) {
    Announcement announcement;
    announcement.announce();
}

TEST(Announcement, EndsWithItsSubscription) {
    Announcement announcement;
    int heard = 0;
    {
        const auto subscription = announcement.subscribe([&] { ++heard; });
        announcement.announce();
    }
    announcement.announce();
    EXPECT_EQ(heard, 1);
}

TEST(Announcement, CanBeCancelledTwice) {
    Announcement announcement;
    int heard = 0;
    auto subscription = announcement.subscribe([&] { ++heard; });
    subscription.cancel();
    subscription.cancel();
    announcement.announce();
    EXPECT_EQ(heard, 0);
}

TEST(Announcement, FollowsAMovedSubscription) {
    Announcement announcement;
    std::string heard;
    auto first = announcement.subscribe([&] { heard += '1'; });
    auto second = announcement.subscribe([&] { heard += '2'; });
    first = std::move(second);
    announcement.announce();
    EXPECT_EQ(heard, "2");
}

TEST(Announcement, IsOutlivedByASubscription) {
    auto announcement = std::make_optional<Announcement>();
    auto subscription = announcement->subscribe([] {});
    announcement.reset();
    subscription.cancel();
}

TEST(Announcement, LetsAnObserverUnsubscribeItselfWhileItRuns) {
    Announcement announcement;
    int heard = 0;
    auto text = std::make_shared<std::string>("still there");
    Subscription subscription;
    subscription = announcement.subscribe([&, text] {
        subscription.cancel();
        heard += *text == "still there" ? 1 : 0;
    });
    announcement.announce();
    announcement.announce();
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(text.use_count(), 1);
}

TEST(Announcement, DoesNotReachAnObserverUnsubscribedMeanwhile) {
    Announcement announcement;
    int heard = 0;
    Subscription later;
    const auto earlier = announcement.subscribe([&] { later.cancel(); });
    later = announcement.subscribe([&] { ++heard; });
    announcement.announce();
    EXPECT_EQ(heard, 0);
}

TEST(Announcement, ReachesAnObserverSubscribedMeanwhileFromTheNextOneOn) {
    Announcement announcement;
    int heard = 0;
    std::vector<Subscription> added;
    const auto subscription = announcement.subscribe([&] {
        for (int i = 0; i < 100; ++i)
            added.push_back(announcement.subscribe([&] { ++heard; }));
    });
    announcement.announce();
    EXPECT_EQ(heard, 0);
    announcement.announce();
    EXPECT_EQ(heard, 100);
}

TEST(Announcement, CanBeMadeAgainByAnObserver) {
    Announcement announcement;
    std::string heard;
    const auto a = announcement.subscribe([&] {
        heard += 'a';
        if (heard.size() == 1) announcement.announce();
    });
    const auto b = announcement.subscribe([&] { heard += 'b'; });
    announcement.announce();
    EXPECT_EQ(heard, "aabb");
}

} // namespace
} // namespace brevane::test
