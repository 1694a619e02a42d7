// SPDX-License-Identifier: MIT
#include "StatusLine.h"

#include <gtest/gtest.h>

namespace brevane::test {
namespace {

TEST(StatusLine, ConnectedWithNeitherNameNorAddressSaysConnected) {
    EXPECT_EQ(statusLine(true, "", ""), "Connected");
}

TEST(StatusLine, TheAddressAloneHasNoSeparator) {
    EXPECT_EQ(statusLine(true, "", "100.64.0.1"), "100.64.0.1");
}

TEST(StatusLine, TheNameAloneHasNoSeparator) {
    EXPECT_EQ(statusLine(true, "h.tail.ts.net", ""), "h.tail.ts.net");
}

TEST(StatusLine, NameAndAddressAreJoinedByAMiddleDot) {
    EXPECT_EQ(statusLine(true, "h.tail.ts.net", "100.64.0.1"), "h.tail.ts.net \u00b7 100.64.0.1");
}

TEST(StatusLine, NotConnectedShowsNeitherNameNorAddress) {
    EXPECT_EQ(statusLine(false, "h.tail.ts.net", "100.64.0.1"), "Not connected");
}

} // namespace
} // namespace brevane::test
