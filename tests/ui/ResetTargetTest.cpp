// SPDX-License-Identifier: MIT
#include "ResetTarget.h"

#include <gtest/gtest.h>

namespace brevane::test {
namespace {

TEST(ResetTarget, TextsOfAll) {
    EXPECT_EQ(resetTexts(ResetTarget::all).title, "Reset All Shares?");
    EXPECT_EQ(resetTexts(ResetTarget::all).message,
              "This will stop all active serves and funnels.");
    EXPECT_EQ(resetTexts(ResetTarget::all).toast, "All shares stopped");
}

TEST(ResetTarget, TextsOfServes) {
    EXPECT_EQ(resetTexts(ResetTarget::serves).title, "Reset All Serves?");
    EXPECT_EQ(resetTexts(ResetTarget::serves).message,
              "This will stop all active serves (tailnet-only).");
    EXPECT_EQ(resetTexts(ResetTarget::serves).toast, "Serves stopped");
}

TEST(ResetTarget, TextsOfFunnels) {
    EXPECT_EQ(resetTexts(ResetTarget::funnels).title, "Reset All Funnels?");
    EXPECT_EQ(resetTexts(ResetTarget::funnels).message,
              "This will stop all active funnels (public internet).");
    EXPECT_EQ(resetTexts(ResetTarget::funnels).toast, "Funnels stopped");
}

} // namespace
} // namespace brevane::test
