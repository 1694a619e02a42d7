// SPDX-License-Identifier: MIT
#include "DescriptorLimit.h"
#include "HttpClient.h"
#include "ServiceTest.h"

#include <boost/asio/ip/tcp.hpp>

#include <algorithm>
#include <chrono>
#include <functional>
#include <latch>
#include <optional>
#include <vector>

namespace brevane::test {
namespace {

class ShareOperations : public ServiceTest {
protected:
    // Adds a folder share and makes the daemon list it.
    std::int64_t addFolder(const std::string& path) {
        servePrints("nothing readable"); // so that the refresh removes nothing
        EXPECT_TRUE(add(SourceType::directory, path).success);
        finishRefresh();
        const std::int64_t port = service->managedServerInfo->rbegin()->first;
        servePrintsProxyTo(port);
        return port;
    }

    // Waits for everything in progress and returns the commands run so far.
    std::vector<std::string> commandsInTheEnd() {
        mainQueue.runPending();
        waitForQueue();
        return commands();
    }

    // Whether an operation has requested a refresh by the time it completes: the commands of the
    // refresh then run before anything that the completion requests.
    bool completesAfterItsRefresh(const std::function<void(std::function<void()>)>& operation) {
        std::optional<bool> isRefreshed;
        operation([&] {
            queue->post([&] {
                const bool last = commands().back() == "serve status --json";
                mainQueue.post([&isRefreshed, last] { isRefreshed = last; });
            });
        });
        EXPECT_TRUE(mainQueue.runUntil([&] { return isRefreshed.has_value(); }));
        return isRefreshed.value_or(false);
    }

    std::string lastChange() {
        std::string last;
        for (const std::string& command : commands())
            if (!command.ends_with("status --json")) last = command;
        return last;
    }
};

TEST_F(ShareOperations, AnAddRunsItsCommandThenRefreshes) {
    changesDo("echo Available");
    start();
    service->lastError.set("old");
    const Outcome added = add(SourceType::port, "3000", "/api", ServeMode::funnel);
    EXPECT_TRUE(added.success);
    EXPECT_EQ(added.output, "Available");
    EXPECT_EQ(*service->lastOutput, "Available");
    EXPECT_EQ(*service->lastError, std::nullopt);
    finishRefresh();
    EXPECT_EQ(commands(), (std::vector<std::string>{"funnel --bg --set-path /api --yes 3000",
                                                    "status --json", "serve status --json"}));
}

TEST_F(ShareOperations, AnAddIsLoadingUntilItsResult) {
    start();
    service->add(ServeMode::serve, SourceType::port, "3000", "/", true, completion());
    EXPECT_FALSE(*service->isLoading);
    ASSERT_TRUE(mainQueue.runOne());
    EXPECT_TRUE(*service->isLoading);
    waitForOutcome();
    EXPECT_FALSE(*service->isLoading);
}

TEST_F(ShareOperations, AFailedAddShowsTheOutputAndDoesNotRefresh) {
    changesDo("echo boom >&2; exit 1");
    start();
    const Outcome added = add(SourceType::port, "3000");
    EXPECT_FALSE(added.success);
    EXPECT_EQ(added.output, "boom");
    EXPECT_EQ(*service->lastError, "boom");
    EXPECT_EQ(commandsInTheEnd(), (std::vector<std::string>{"serve --bg --yes 3000"}));
}

TEST_F(ShareOperations, AFailedAddWithoutOutputShowsTheStatus) {
    changesDo("exit 7");
    start();
    const Outcome added = add(SourceType::port, "3000");
    EXPECT_EQ(added.output, "");
    EXPECT_EQ(*service->lastError, "Command failed (exit 7)");
}

TEST_F(ShareOperations, AnAddWithoutAShellShowsStatusMinusOne) {
    shell = "/not/there/zsh";
    start();
    EXPECT_FALSE(add(SourceType::text, "hi").success);
    EXPECT_EQ(*service->lastError, "Command failed (exit -1)");
}

TEST_F(ShareOperations, AFileIsServedOutOfItsFolderUnderItsName) {
    writeFile(folder / "report.pdf", "content");
    start();
    ASSERT_TRUE(add(SourceType::file, (folder / "report.pdf").string()).success);
    const auto& [port, info] = *service->managedServerInfo->begin();
    EXPECT_EQ(lastChange(), "serve --bg --set-path /report.pdf --yes " + std::to_string(port));
    EXPECT_EQ(info, (ManagedServerInfo{(folder / "report.pdf").string(), false}));
    EXPECT_EQ(fetch(port, "/report.pdf"), "content");
    EXPECT_EQ(record(), (Record{{std::to_string(port),
                                 {{"path", (folder / "report.pdf").string()}, {"type", "file"}}}}));
}

TEST_F(ShareOperations, AFilesOwnMountPathIsKeptAndAnEmptyOneStaysEmpty) {
    start();
    ASSERT_TRUE(add(SourceType::file, "/tmp/a.txt", "/docs").success);
    EXPECT_TRUE(lastChange().starts_with("serve --bg --set-path /docs --yes "));
    ASSERT_TRUE(add(SourceType::file, "/tmp/a.txt", "").success);
    EXPECT_TRUE(lastChange().starts_with("serve --bg --yes "));
}

TEST_F(ShareOperations, AFilesTrailingSlashDoesNotCount) {
    start();
    ASSERT_TRUE(add(SourceType::file, "/tmp/a.txt/").success);
    EXPECT_TRUE(lastChange().starts_with("serve --bg --set-path /a.txt --yes ")) << lastChange();
}

TEST_F(ShareOperations, AFolderIsRecordedAsEnteredWithoutBlanksOrAddedSlash) {
    writeFile(folder / "a.txt", "content");
    start();
    ASSERT_TRUE(add(SourceType::directory, " \t" + folder.path.string() + "\t").success);
    const auto& [port, info] = *service->managedServerInfo->begin();
    EXPECT_EQ(info, (ManagedServerInfo{folder.path.string(), true}));
    EXPECT_EQ(lastChange(), "serve --bg --yes " + std::to_string(port));
    EXPECT_EQ(fetch(port, "/a.txt"), "content");
}

// Visible only with an empty path, which the window does not allow.
TEST_F(ShareOperations, ASlashIsAppendedToAFoldersPath) {
    writeFile(folder / "a.txt", "content");
    start();
    ASSERT_TRUE(add(SourceType::directory, "").success);
    EXPECT_EQ(fetch(service->managedServerInfo->begin()->first, (folder / "a.txt").string()),
              "content");
}

TEST_F(ShareOperations, AFolderThatDoesNotExistIsSharedAndAnswers404) {
    start();
    ASSERT_TRUE(add(SourceType::directory, (folder / "none").string()).success);
    EXPECT_EQ(fetch(service->managedServerInfo->begin()->first, "/"), "404 Not Found");
}

TEST_F(ShareOperations, AServerWhoseCommandFailedIsStoppedAndTakenOutOfTheRecord) {
    changesDo("echo \"$*\" | sed 's/.* //'; exit 1");
    start();
    const Outcome added = add(SourceType::directory, folder.path.string());
    EXPECT_FALSE(added.success);
    EXPECT_TRUE(service->managedServerInfo->empty());
    EXPECT_TRUE(record().empty());
    EXPECT_EQ(answerTo(std::stoll(added.output), "GET / HTTP/1.1\r\n\r\n"), "");
}

TEST_F(ShareOperations, AServerThatCannotStartFailsTheAddWithoutACommand) {
    start();
    // No descriptor is left to open a socket; the limit applies to the whole process.
    auto none = std::make_optional<DescriptorLimit>(0);
    const Outcome added = add(SourceType::directory, folder.path.string());
    none.reset();
    EXPECT_FALSE(added.success);
    EXPECT_EQ(added.output, "Failed to start file server: Too many open files");
    EXPECT_EQ(*service->lastError, added.output);
    EXPECT_TRUE(commands().empty());
}

TEST_F(ShareOperations, TheRegistryChangesBeforeTheResult) {
    start();
    bool known = false;
    service->add(ServeMode::serve, SourceType::directory, folder.path.string(), "/", true,
                 [&](bool, const std::string&) {
                     known = !service->managedServerInfo->empty() && writes() == 1;
                     outcome.emplace();
                 });
    waitForOutcome();
    EXPECT_TRUE(known);
}

TEST_F(ShareOperations, StoppingNamesThePortEvenOfAFunnel) {
    start();
    ServeEntry entry = proxyEntry("h.tail.ts.net:8443", "http://127.0.0.1:3000");
    entry.isFunnel = true;
    service->stopEntry(entry, completion());
    EXPECT_TRUE(waitForOutcome().success);
    EXPECT_EQ(lastChange(), "serve --https=8443 off");
    finishRefresh();
}

TEST_F(ShareOperations, StoppingATcpShareNamesHttpsToo) {
    changesDo("echo 'error: cannot remove web handler; currently serving TCP' >&2; exit 1");
    start();
    ServeEntry entry = proxyEntry("h.tail.ts.net:5432", "localhost:5432");
    entry.handlerType = ServeEntry::HandlerType::tcp;
    service->stopEntry(entry, completion());
    const Outcome stopped = waitForOutcome();
    EXPECT_FALSE(stopped.success);
    EXPECT_EQ(stopped.output, "error: cannot remove web handler; currently serving TCP");
    EXPECT_EQ(lastChange(), "serve --https=5432 off");
}

TEST_F(ShareOperations, StoppingStopsAndForgetsTheServer) {
    start();
    const auto port = addFolder(folder.path.string());
    EXPECT_NE(fetch(port, "/"), "");
    service->stopEntry(proxyEntry("h.tail.ts.net:443", "http://127.0.0.1:" + std::to_string(port)),
                       completion());
    EXPECT_TRUE(waitForOutcome().success);
    EXPECT_EQ(answerTo(port, "GET / HTTP/1.1\r\n\r\n"), "");
    EXPECT_TRUE(service->managedServerInfo->empty());
    EXPECT_TRUE(record().empty());
}

TEST_F(ShareOperations, StoppingForgetsAndPersistsAlsoWhereNoServerRan) {
    recordHolds({{"49231", {{"path", "/x"}, {"type", "directory"}}}});
    start();
    service->stopEntry(proxyEntry("h:443", "http://127.0.0.1:49231"), completion());
    waitForOutcome();
    EXPECT_TRUE(service->managedServerInfo->empty());
    EXPECT_TRUE(record().empty());
    EXPECT_EQ(writes(), 1);

    service->stopEntry(proxyEntry("h:443", "http://127.0.0.1:3000"), completion());
    waitForOutcome();
    EXPECT_EQ(writes(), 2);
}

TEST_F(ShareOperations, StoppingReadsThePortOfAnyDetail) {
    recordHolds({{"49231", {{"path", "/x"}}}});
    start();
    ServeEntry entry = proxyEntry("h:443", "http://127.0.0.1:49231");
    entry.handlerType = ServeEntry::HandlerType::text;
    service->stopEntry(entry, completion());
    waitForOutcome();
    EXPECT_TRUE(service->managedServerInfo->empty());
}

TEST_F(ShareOperations, AFailedStopKeepsTheServerAndStillRefreshes) {
    start();
    const auto port = addFolder(folder.path.string());
    changesDo("exit 1");
    const auto before = commands().size();
    service->stopEntry(proxyEntry("h:443", "http://127.0.0.1:" + std::to_string(port)),
                       completion());
    EXPECT_FALSE(waitForOutcome().success);
    finishRefresh();
    EXPECT_EQ(commands().size(), before + 3);
    EXPECT_NE(fetch(port, "/"), "");
}

TEST_F(ShareOperations, AFailedResetOfServesLeavesServersRunning) {
    start();
    const auto port = addFolder(folder.path.string());
    changesDo("echo nope; exit 1");
    service->resetServes(completion());
    const Outcome reset = waitForOutcome();
    EXPECT_FALSE(reset.success);
    EXPECT_EQ(reset.output, "nope");
    EXPECT_EQ(lastChange(), "serve reset");
    finishRefresh();
    EXPECT_NE(fetch(port, "/"), "");
    EXPECT_EQ(service->managedServerInfo->size(), 1u);
}

TEST_F(ShareOperations, AResetOfFunnelsStopsEveryServer) {
    start();
    const auto port = addFolder(folder.path.string());
    service->resetFunnels(completion());
    EXPECT_TRUE(waitForOutcome().success);
    EXPECT_EQ(lastChange(), "funnel reset");
    EXPECT_EQ(answerTo(port, "GET / HTTP/1.1\r\n\r\n"), "");
    EXPECT_TRUE(service->managedServerInfo->empty());
    EXPECT_TRUE(record().empty());
    finishRefresh();
}

TEST_F(ShareOperations, ResetAllEmptiesTheRegistryWhateverTheCommandsSay) {
    start();
    const auto port = addFolder(folder.path.string());
    changesDo("exit 1");
    bool completed = false;
    service->resetAll([&] { completed = true; });
    ASSERT_TRUE(mainQueue.runUntil([&] { return completed; }));
    EXPECT_EQ(answerTo(port, "GET / HTTP/1.1\r\n\r\n"), "");
    EXPECT_TRUE(service->managedServerInfo->empty());
    EXPECT_TRUE(record().empty());
    const auto ran = commands();
    EXPECT_NE(std::find(ran.begin(), ran.end(), "serve reset"), ran.end());
    EXPECT_EQ(lastChange(), "funnel reset");
    finishRefresh();
}

TEST_F(ShareOperations, StopsAndResetsLeaveTheLastErrorAndOutputToOthers) {
    changesDo("echo failed; exit 1");
    start();
    service->stopEntry(proxyEntry("h:443", ""), completion());
    waitForOutcome();
    EXPECT_EQ(*service->lastError, std::nullopt);
    EXPECT_EQ(*service->lastOutput, std::nullopt);
}

TEST_F(ShareOperations, ASuccessfulStopLeavesTheLastErrorToItsRefresh) {
    start();
    service->lastError.set("old");
    std::optional<std::string> atCompletion;
    service->stopEntry(proxyEntry("h:443", ""), [&](bool, const std::string&) {
        atCompletion = *service->lastError;
        outcome.emplace();
    });
    waitForOutcome();
    EXPECT_EQ(atCompletion, "old");
    finishRefresh();
    EXPECT_EQ(*service->lastError, std::nullopt);
}

TEST_F(ShareOperations, StopsAndResetsCompleteAfterTheyHaveAskedForARefresh) {
    start();
    const auto told = [](std::function<void()> done) {
        return [done = std::move(done)](bool, const std::string&) { done(); };
    };
    EXPECT_TRUE(completesAfterItsRefresh(
        [&](auto done) { service->stopEntry(proxyEntry("h:443", ""), told(done)); }));
    EXPECT_TRUE(completesAfterItsRefresh([&](auto done) { service->resetServes(told(done)); }));
    EXPECT_TRUE(completesAfterItsRefresh([&](auto done) { service->resetFunnels(told(done)); }));
    EXPECT_TRUE(completesAfterItsRefresh([&](auto done) { service->resetAll(done); }));
}

TEST_F(ShareOperations, AStopDoesNotWaitForADiskThatHangs) {
    // Shared, since the record's thread may still wait when the test has ended.
    const auto answer = std::make_shared<std::latch>(1);
    preferences.beforeUpdate = [answer] { answer->wait(); };
    start();
    const auto begun = std::chrono::steady_clock::now();
    service->stopEntry(proxyEntry("h:443", "http://127.0.0.1:49231"), completion());
    EXPECT_TRUE(waitForOutcome().success);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(30));
    answer->count_down();
}

TEST_F(ShareOperations, AnOperationWhoseServiceIsGoneRunsNothingAndNeverCompletes) {
    start();
    std::latch dropped(1);
    std::latch done(1);
    queue->post([&] { dropped.wait(); });
    service->stopEntry(proxyEntry("h:443", ""), completion());
    service->resetAll([this] { outcome.emplace(); });
    service->resetServes(completion());
    queue->post([&] { done.count_down(); });
    service.reset();
    dropped.count_down();
    done.wait();
    EXPECT_TRUE(commands().empty());
    EXPECT_FALSE(outcome.has_value());
}

} // namespace
} // namespace brevane::test
