// SPDX-License-Identifier: MIT
#include "DoorbellSocket.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace brevane::test {

using namespace std::chrono_literals;

namespace {

std::string ownName() {
    return "brevane-test-" + std::to_string(getpid());
}

TEST(DoorbellSocket, WhoRingsCanBeAnswered) {
    DoorbellSocket listener(ownName());
    DoorbellSocket caller;
    EXPECT_FALSE(listener.nextRing());
    ASSERT_TRUE(caller.ring(ownName()));
    const auto ring = listener.nextRing();
    ASSERT_TRUE(ring);
    EXPECT_EQ(ring->message, "");
    EXPECT_FALSE(caller.waitForRing(0ms));
    ASSERT_TRUE(listener.ring(ring->caller));
    EXPECT_TRUE(caller.waitForRing(1s));
}

TEST(DoorbellSocket, AMessageArrivesAsItIsAndAnEndlessOneIsCut) {
    DoorbellSocket listener(ownName());
    DoorbellSocket caller;
    ASSERT_TRUE(caller.ring(ownName(), std::string("a\0b", 3)));
    ASSERT_TRUE(caller.ring(ownName(), std::string(100'000, 'x')));
    EXPECT_EQ(listener.nextRing().value().message, std::string("a\0b", 3));
    EXPECT_EQ(listener.nextRing().value().message,
              std::string(DoorbellSocket::longestMessage, 'x'));
    EXPECT_FALSE(listener.nextRing());
}

TEST(DoorbellSocket, RingingWhereNobodyListensFails) {
    EXPECT_FALSE(DoorbellSocket().ring(ownName()));
}

TEST(DoorbellSocket, ANameThatIsTakenCannotBeHadAgainUntilItIsFree) {
    {
        const DoorbellSocket first(ownName());
        EXPECT_GE(first.descriptor(), 0);
        EXPECT_EQ(DoorbellSocket(ownName()).descriptor(), -1);
    }
    EXPECT_GE(DoorbellSocket(ownName()).descriptor(), 0);
}

} // namespace
} // namespace brevane::test
