// SPDX-License-Identifier: MIT
#include "RecordTest.h"

#include <chrono>
#include <string>

namespace brevane::test {
namespace {

TEST_F(RecordTest, SwitchingAccountsAndBackForgetsNothing) {
    const auto port = startServing("a.ts.net");
    switchTo("b.ts.net");
    switchTo("a.ts.net", port);
    EXPECT_EQ(fetch(port, "/a.txt"), "content");
    quit();
    EXPECT_TRUE(isRecorded(port));
    EXPECT_EQ(nodeOf(port), "a.ts.net");
}

TEST_F(RecordTest, WhatNothingLeadsToUnderAnotherAccountIsNotServedMeanwhile) {
    const auto port = startServing("a.ts.net");
    switchTo("b.ts.net");
    EXPECT_EQ(fetch(port, "/"), "");
}

TEST_F(RecordTest, AShareOfARecordWithoutNamesBelongsToTheAccountThatLeadsToIt) {
    const auto port = freePort();
    fileHoldsFolder(port);
    startOnFile();
    switchTo("a.ts.net", port);
    switchTo("b.ts.net");
    quit();
    EXPECT_TRUE(isRecorded(port));
    EXPECT_EQ(nodeOf(port), "a.ts.net");
}

TEST_F(RecordTest, ARestartUnderAnotherAccountForgetsNothing) {
    const auto port = freePort();
    fileHoldsFolder(port, "a.ts.net");
    account("b.ts.net");
    startOnFile();
    refresh();
    quit();
    EXPECT_TRUE(isRecorded(port));
    EXPECT_EQ(nodeOf(port), "a.ts.net");
}

TEST_F(RecordTest, APortIsForgottenUnderTheNameThatItWasMadeUnder) {
    fileHoldsFolder(49231, "a.ts.net");
    account("a.ts.net");
    startOnFile();
    refresh();
    quit();
    EXPECT_FALSE(isRecorded(49231));
    EXPECT_EQ(nodeOf(49231), "");
}

TEST_F(RecordTest, ADaemonThatDoesNotRunForgetsNothing) {
    fileHoldsFolder(49231);
    startOnFile();
    for (const char* const state : {"Stopped", "NeedsLogin", "Starting", "NoState"}) {
        account("a.ts.net", state);
        refresh();
    }
    account("", "Running");
    refresh();
    statusPrints("no status");
    refresh();
    quit();
    EXPECT_TRUE(isRecorded(49231));
}

TEST_F(RecordTest, AResetKeepsTheSharesOfAnotherAccount) {
    fileHoldsFolder(49231, "a.ts.net");
    account("b.ts.net");
    startOnFile();
    refresh();
    runReset();
    finishRefresh();
    quit();
    EXPECT_TRUE(isRecorded(49231));
}

TEST_F(RecordTest, AResetUnderAnAccountSwitchedUnseenKeepsTheSharesOfTheFormerOne) {
    const auto port = startServing("a.ts.net");
    account("b.ts.net");
    servePrints("{}");
    runReset();
    EXPECT_TRUE(service->managedServerInfo->empty());
    finishRefresh();
    switchTo("a.ts.net", port);
    EXPECT_NE(fetch(port, "/"), "");
    quit();
    EXPECT_TRUE(isRecorded(port));
    EXPECT_EQ(nodeOf(port), "a.ts.net");
}

TEST_F(RecordTest, ASwitchBetweenTheTwoQueriesOfOneRefreshIsMadeGoodByTheNext) {
    const auto port = startServing("a.ts.net");
    switchTo("a.ts.net"); // but its shares are already those of the other account
    switchTo("b.ts.net");
    switchTo("a.ts.net", port);
    EXPECT_NE(fetch(port, "/"), "");
}

TEST_F(RecordTest, StoppingKeepsAnotherAccountsShareThatHasThePort) {
    fileHoldsFolder(49231, "a.ts.net");
    account("b.ts.net");
    startOnFile();
    refresh();
    service->stopEntry(proxyEntry("b.ts.net:443", "http://127.0.0.1:49231"), completion());
    EXPECT_TRUE(waitForOutcome().success);
    finishRefresh();
    quit();
    EXPECT_TRUE(isRecorded(49231));
}

TEST_F(RecordTest, AShareMadeAfterAnUnseenSwitchBelongsToTheAccountThatHoldsIt) {
    account("a.ts.net");
    startOnFile();
    refresh();
    account("b.ts.net");
    changesDo("for port do :; done; echo '{\"Web\":{\"b.ts.net:443\":{\"Handlers\":{\"/\":"
              "{\"Proxy\":\"http://127.0.0.1:'$port'\"}}}}}' > \"$0.serve\"");
    const auto port = addFolder();
    finishRefresh();
    quit();
    EXPECT_EQ(nodeOf(port), "b.ts.net");
}

TEST_F(RecordTest, APortOfAnotherAccountsIsNotGivenToANewShare) {
    fileHoldsFolder(49231, "a.ts.net");
    ManagedServerRecord record(stored);
    const ManagedServerRecord::Entry other{.info = {.path = "/new", .isDirectory = true},
                                           .node = "b.ts.net"};
    EXPECT_FALSE(record.claim(49231, other, std::chrono::minutes(1)));
    EXPECT_TRUE(record.claim(49232, other, std::chrono::minutes(1)));
    EXPECT_EQ(nodeOf(49231), "a.ts.net");
    EXPECT_EQ(nodeOf(49232), "b.ts.net");
}

} // namespace
} // namespace brevane::test
