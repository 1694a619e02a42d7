// SPDX-License-Identifier: MIT
#include "ServiceTest.h"

#include <latch>
#include <string>
#include <vector>

namespace brevane::test {
namespace {

using Refresh = ServiceTest;

std::string status(const std::string& state, const std::string& self) {
    return R"({"BackendState":")" + state + R"(","Self":)" + self + "}";
}

TEST_F(Refresh, ConstructionRunsNoCommandAndPublishesInitialValues) {
    start();
    EXPECT_EQ(*service->dnsName, "");
    EXPECT_EQ(*service->tailscaleIP, "");
    EXPECT_FALSE(*service->isConnected);
    EXPECT_EQ(*service->hostname, "");
    EXPECT_TRUE(service->entries->empty());
    EXPECT_FALSE(*service->isLoading);
    EXPECT_EQ(*service->lastError, std::nullopt);
    EXPECT_EQ(*service->lastOutput, std::nullopt);
    EXPECT_TRUE(service->managedServerInfo->empty());
    refresh();
    EXPECT_EQ(commands(), (std::vector<std::string>{"status --json", "serve status --json"}));
}

TEST_F(Refresh, PublishesTheNodeWithoutTheTrailingDotOfItsName) {
    start();
    refresh();
    EXPECT_TRUE(*service->isConnected);
    EXPECT_EQ(*service->dnsName, "h.tail.ts.net");
    EXPECT_EQ(*service->hostname, "h");
    EXPECT_EQ(*service->tailscaleIP, "100.64.0.1");
    EXPECT_EQ(*service->lastError, std::nullopt);
}

TEST_F(Refresh, RemovesOnlyOneTrailingDot) {
    statusPrints(status("Running", R"({"DNSName":"h.tail.ts.net.."})"));
    start();
    refresh();
    EXPECT_EQ(*service->dnsName, "h.tail.ts.net.");
}

TEST_F(Refresh, AnotherBackendStateIsNotConnectedButNamesTheNode) {
    statusPrints(status("Stopped", R"({"DNSName":"h.tail.ts.net.","HostName":"h"})"));
    start();
    refresh();
    EXPECT_FALSE(*service->isConnected);
    EXPECT_EQ(*service->hostname, "h");
    EXPECT_EQ(*service->dnsName, "h.tail.ts.net");
}

TEST_F(Refresh, TheBackendStateIsCaseSensitive) {
    statusPrints(status("running", "{}"));
    start();
    refresh();
    EXPECT_FALSE(*service->isConnected);
}

TEST_F(Refresh, NoAddressGivesNoneAndTwoGiveTheFirst) {
    statusPrints(status("Running", R"({"TailscaleIPs":["100.64.0.1","fd7a::1"]})"));
    start();
    refresh();
    EXPECT_EQ(*service->tailscaleIP, "100.64.0.1");
    statusPrints(status("Running", R"({"TailscaleIPs":[]})"));
    refresh();
    EXPECT_EQ(*service->tailscaleIP, "");
}

TEST_F(Refresh, AMissingSelfEmptiesTheNodesTexts) {
    start();
    refresh();
    statusPrints(R"({"BackendState":"NeedsLogin"})");
    refresh();
    EXPECT_EQ(*service->dnsName, "");
    EXPECT_EQ(*service->hostname, "");
    EXPECT_EQ(*service->tailscaleIP, "");
}

TEST_F(Refresh, AStatusThatIsNotJsonShowsItsFirst200Characters) {
    statusPrints(std::string(250, 'a') + std::string(250, 'b'));
    start();
    refresh();
    EXPECT_EQ(*service->lastError, "Status error: " + std::string(200, 'a'));
    EXPECT_FALSE(*service->isConnected);
}

TEST_F(Refresh, TheErrorIsCutBetweenCharacters) {
    std::string text;
    for (int i = 0; i < 250; ++i)
        text += "€";
    statusPrints(text);
    start();
    refresh();
    EXPECT_EQ(*service->lastError, "Status error: " + text.substr(0, 600));
}

TEST_F(Refresh, AnErrorAlreadyShownIsKept) {
    statusPrints("no");
    start();
    service->refresh();
    ASSERT_TRUE(mainQueue.runUntil([&] { return *service->isLoading; }));
    service->lastError.set("shown");
    ASSERT_TRUE(mainQueue.runUntil([&] { return !*service->isLoading; }));
    EXPECT_EQ(*service->lastError, "shown");
}

TEST_F(Refresh, AnEmptyStatusDisconnectsWithoutAnErrorAndKeepsTheRest) {
    start();
    refresh();
    statusPrints("");
    refresh();
    EXPECT_FALSE(*service->isConnected);
    EXPECT_EQ(*service->lastError, std::nullopt);
    EXPECT_EQ(*service->dnsName, "h.tail.ts.net");
}

TEST_F(Refresh, AFailedStatusBuildsTcpRowsWithThePreviousName) {
    start();
    refresh();
    statusPrints("oh no");
    servePrints(R"({"TCP":{"22":{"TCPForward":"localhost:22"}}})");
    refresh();
    ASSERT_EQ(service->entries->size(), 1u);
    EXPECT_EQ(service->entries->front().hostPort, "h.tail.ts.net:22");
    EXPECT_EQ(*service->dnsName, "h.tail.ts.net");
}

TEST_F(Refresh, RowsUseTheNameOfTheSameRefresh) {
    servePrints(R"({"TCP":{"22":{"TCPForward":"localhost:22"}}})");
    start();
    refresh();
    EXPECT_EQ(service->entries->front().hostPort, "h.tail.ts.net:22");
}

TEST_F(Refresh, AnUnreadableServeStatusEmptiesTheListAndKeepsTheConnection) {
    servePrintsProxyTo(3000);
    start();
    refresh();
    ASSERT_EQ(service->entries->size(), 1u);
    servePrints("getting serve config: failed");
    refresh();
    EXPECT_TRUE(service->entries->empty());
    EXPECT_TRUE(*service->isConnected);
    EXPECT_EQ(*service->lastError, std::nullopt);
}

TEST_F(Refresh, AWarningBesideTheJsonMakesItUnreadable) {
    script("cat \"$0.status\"; echo warning >&2", "cat \"$0.serve\"", ":");
    start();
    refresh();
    EXPECT_FALSE(*service->isConnected);
    EXPECT_TRUE(service->lastError->value_or("").starts_with("Status error: {"));
}

TEST_F(Refresh, TwoQuickCallsRunFourCommandsAndTheFirstEndsTheLoading) {
    start();
    int applications = 0;
    const auto counting = service->entries.willChange.subscribe([&] { ++applications; });
    service->refresh();
    service->refresh();
    finishRefresh();
    EXPECT_EQ(applications, 1);
    ASSERT_TRUE(mainQueue.runUntil([&] { return applications == 2; }));
    EXPECT_FALSE(*service->isLoading);
    EXPECT_EQ(commands(), (std::vector<std::string>{"status --json", "serve status --json",
                                                    "status --json", "serve status --json"}));
}

TEST_F(Refresh, LoadingStartsLaterEvenOnTheMainThread) {
    start();
    service->lastError.set("old");
    service->refresh();
    EXPECT_FALSE(*service->isLoading);
    EXPECT_EQ(*service->lastError, "old");
    ASSERT_TRUE(mainQueue.runOne());
    EXPECT_TRUE(*service->isLoading);
    EXPECT_EQ(*service->lastError, std::nullopt);
    finishRefresh();
}

TEST_F(Refresh, PublishesInOneStepInAFixedOrder) {
    start();
    std::vector<std::string> order;
    const auto note = [&order](const char* name) {
        return [&order, name] { order.emplace_back(name); };
    };
    const auto a = service->isConnected.willChange.subscribe(note("isConnected"));
    const auto b = service->hostname.willChange.subscribe(note("hostname"));
    const auto c = service->dnsName.willChange.subscribe(note("dnsName"));
    const auto d = service->tailscaleIP.willChange.subscribe(note("tailscaleIP"));
    const auto e = service->entries.willChange.subscribe(note("entries"));
    const auto f = service->isLoading.willChange.subscribe(note("isLoading"));
    service->refresh();
    ASSERT_TRUE(mainQueue.runOne());
    EXPECT_EQ(order, (std::vector<std::string>{"isLoading"}));
    order.clear();
    ASSERT_TRUE(mainQueue.runOne());
    EXPECT_EQ(order, (std::vector<std::string>{"isConnected", "hostname", "dnsName", "tailscaleIP",
                                               "entries", "isLoading"}));
}

TEST_F(Refresh, EveryChangeIsForwardedBeforeItTakesEffect) {
    start();
    int forwarded = 0;
    bool wasLoading = true;
    const auto watching = service->objectWillChange.subscribe([&] {
        ++forwarded;
        wasLoading = *service->isLoading;
    });
    service->isLoading.set(true);
    EXPECT_EQ(forwarded, 1);
    EXPECT_FALSE(wasLoading);
    service->dnsName.set("h.tail.ts.net");
    EXPECT_EQ(forwarded, 2);
    service->tailscaleIP.set("100.64.0.1");
    EXPECT_EQ(forwarded, 3);
    service->isConnected.set(true);
    EXPECT_EQ(forwarded, 4);
    service->hostname.set("h");
    EXPECT_EQ(forwarded, 5);
    service->entries.set({});
    EXPECT_EQ(forwarded, 6);
    service->lastError.set("x");
    EXPECT_EQ(forwarded, 7);
    service->lastOutput.set("y");
    EXPECT_EQ(forwarded, 8);
    service->managedServerInfo.set({});
    EXPECT_EQ(forwarded, 9);
}

TEST_F(Refresh, DoesNothingOnceTheServiceIsGone) {
    start();
    std::latch dropped(1);
    std::latch done(1);
    queue->post([&] { dropped.wait(); });
    service->refresh();
    queue->post([&] { done.count_down(); });
    service.reset();
    mainQueue.dropPending(); // the task that sets isLoading owned the service until now
    dropped.count_down();
    done.wait();
    EXPECT_TRUE(commands().empty());
}

TEST_F(Refresh, AMissingExecutableShowsTheShellsMessage) {
    std::filesystem::remove(binary());
    start();
    refresh();
    EXPECT_TRUE(service->lastError->value_or("").starts_with("Status error: zsh:"))
        << **service->lastError;
    EXPECT_FALSE(*service->isConnected);
    EXPECT_TRUE(service->entries->empty());
}

TEST_F(Refresh, AMissingShellDisconnectsWithoutAnError) {
    shell = "/not/there/zsh";
    start();
    refresh();
    EXPECT_FALSE(*service->isConnected);
    EXPECT_EQ(*service->lastError, std::nullopt);
}

TEST_F(Refresh, AnOutputThatIsNotUtf8CountsAsNone) {
    statusPrints("\xff\xfe");
    servePrints("\xff");
    start();
    refresh();
    EXPECT_FALSE(*service->isConnected);
    EXPECT_EQ(*service->lastError, std::nullopt);
    EXPECT_TRUE(service->entries->empty());
}

} // namespace
} // namespace brevane::test
