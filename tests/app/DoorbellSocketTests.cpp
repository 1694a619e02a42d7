// SPDX-License-Identifier: MIT
#include "DoorbellSocket.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace brevane {

using namespace std::chrono_literals;

namespace {

std::string ownName() {
    return "brevane-test-" + std::to_string(getpid());
}

} // namespace

TEST(DoorbellSocket, AMessageArrivesWholeAndItsSenderCanBeAnswered) {
    DoorbellSocket listener(ownName());
    DoorbellSocket caller;
    ASSERT_TRUE(caller.send(ownName(), "token with blanks"));
    const auto message = listener.receive();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->text, "token with blanks");
    EXPECT_FALSE(caller.waitForMessage(0ms));
    ASSERT_TRUE(listener.send(message->sender, ""));
    EXPECT_TRUE(caller.waitForMessage(1s));
}

TEST(DoorbellSocket, SendingToNobodyFails) {
    DoorbellSocket caller;
    EXPECT_FALSE(caller.send(ownName(), "anyone"));
}

TEST(DoorbellSocket, ANameThatIsTakenCannotBeHadAgainUntilItIsFree) {
    {
        const DoorbellSocket first(ownName());
        EXPECT_GE(first.descriptor(), 0);
        EXPECT_EQ(DoorbellSocket(ownName()).descriptor(), -1);
    }
    EXPECT_GE(DoorbellSocket(ownName()).descriptor(), 0);
}

TEST(DoorbellSocket, AMessageThatIsTooLongIsCut) {
    DoorbellSocket listener(ownName());
    ASSERT_TRUE(DoorbellSocket().send(ownName(), std::string(5000, 'x')));
    EXPECT_EQ(listener.receive()->text, std::string(4096, 'x'));
}

} // namespace brevane
