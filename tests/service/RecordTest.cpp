// SPDX-License-Identifier: MIT
#include "RecordTest.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/json.hpp>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace brevane::test {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

TEST_F(RecordTest, EntriesOfAnotherShapeAreIgnoredAndKept) {
    const auto port = freePort();
    fileHolds(
        R"({"Other":[1,true],"TailscaleManagedServers":{"5":7,"6":{"path":8},"x":{"path":"/x"},)"
        R"("7":{"type":"directory"},")" +
        std::to_string(port) + R"(":{"path":")" + folder.path.string() +
        R"(","type":"directory"}}})");
    servePrintsProxyTo(port);
    startOnFile();
    EXPECT_EQ(service->managedServerInfo->size(), 1U);
    refresh();
    EXPECT_NE(fetch(port, "/"), "");
    runReset();
    finishRefresh();
    quit();
    EXPECT_EQ(contents()["TailscaleManagedServers"],
              json::parse(R"({"5":7,"6":{"path":8},"x":{"path":"/x"},"7":{"type":"directory"}})"));
    EXPECT_EQ(contents()["Other"], json::parse("[1,true]"));
}

TEST_F(RecordTest, AKeyInAnotherSpellingIsTheSamePort) {
    fileHolds(R"({"TailscaleManagedServers":{"+49231":{"path":"/x"}}})");
    startOnFile();
    EXPECT_TRUE(service->managedServerInfo->contains(49231));
    refresh();
    quit();
    EXPECT_TRUE(contents()["TailscaleManagedServers"].get_object().empty());
}

TEST_F(RecordTest, HoldsAShareBeforeItsCommandRuns) {
    account("a.ts.net");
    startOnFile();
    refresh();
    bool known = true;
    changesDo(
        "cp \"${0%/*}/preferences.json\" \"$0.seen\"; touch \"$0.running\"; read line < \"$0.go\"");
    ASSERT_EQ(std::system(("mkfifo " + binary().string() + ".go").c_str()), 0);
    service->add(ServeMode::serve, SourceType::directory, folder.path.string(), "/", true,
                 completion());
    EXPECT_TRUE(eventually([&] { return fs::exists(folder / "tailscale.running"); }));
    mainQueue.runPending();
    known = !service->managedServerInfo->empty();
    writeFile(folder / "tailscale.go", "\n");
    EXPECT_TRUE(waitForOutcome().success);
    EXPECT_FALSE(known);
    const auto port = service->managedServerInfo->begin()->first;
    fs::copy_file(folder / "tailscale.seen", file, fs::copy_options::overwrite_existing);
    EXPECT_TRUE(isRecorded(port));
    EXPECT_EQ(nodeOf(port), "a.ts.net");
}

TEST_F(RecordTest, TakesAShareOutAgainWhoseCommandFails) {
    startOnFile();
    changesDo("cp \"${0%/*}/preferences.json\" \"$0.seen\"; exit 1");
    EXPECT_FALSE(add(SourceType::directory, folder.path.string()).success);
    quit();
    EXPECT_TRUE(contents().at("TailscaleManagedServers").get_object().empty());
    fs::copy_file(folder / "tailscale.seen", file, fs::copy_options::overwrite_existing);
    EXPECT_EQ(contents().at("TailscaleManagedServers").get_object().size(), 1U);
}

TEST_F(RecordTest, KeepsABackgroundShareWhoseCommandQuittingHasEnded) {
    startOnFile();
    changesDo("touch \"$0.running\"; sleep 1000");
    service->add(ServeMode::serve, SourceType::directory, folder.path.string(), "/", true,
                 completion());
    EXPECT_TRUE(eventually([&] { return fs::exists(folder / "tailscale.running"); }));
    quit();
    ASSERT_TRUE(contents()["TailscaleManagedServers"].is_object());
    EXPECT_EQ(contents()["TailscaleManagedServers"].get_object().size(), 1U);
}

TEST_F(RecordTest, TakesAForegroundShareOutAgainThatQuittingHasEnded) {
    startOnFile();
    changesDo("cp \"${0%/*}/preferences.json\" \"$0.seen\"; touch \"$0.running\"; sleep 1000");
    service->add(ServeMode::serve, SourceType::directory, folder.path.string(), "/", false,
                 completion());
    EXPECT_TRUE(eventually([&] { return fs::exists(folder / "tailscale.running"); }));
    quit();
    ASSERT_TRUE(contents()["TailscaleManagedServers"].is_object());
    EXPECT_TRUE(contents()["TailscaleManagedServers"].get_object().empty());
    EXPECT_TRUE(fs::exists(folder / "tailscale.seen"));
}

TEST_F(RecordTest, APathThatIsNotUtf8CannotBeRecordedAndIsNotShared) {
    startOnFile();
    const Outcome added = add(SourceType::directory, "/\xff");
    EXPECT_FALSE(added.success);
    EXPECT_TRUE(commands().empty());
}

TEST_F(RecordTest, ATakenPortIsTriedAgainByItselfAtGrowingIntervals) {
    using boost::asio::ip::tcp;
    using namespace std::chrono_literals;
    boost::asio::io_context context;
    auto taken = std::make_optional<tcp::acceptor>(context, tcp::endpoint(tcp::v4(), 0));
    const std::int64_t port = taken->local_endpoint().port();
    fileHoldsFolder(port);
    servePrintsProxyTo(port);
    startOnFile();
    refresh();
    for (const auto delay : {1s, 2s, 4s, 8s, 16s, 30s, 30s})
        EXPECT_TRUE(mainQueue.runDelayed(delay)) << delay.count();
    EXPECT_FALSE(mainQueue.runDelayed(1s));
    taken.reset();
    EXPECT_TRUE(mainQueue.runDelayed(30s));
    EXPECT_NE(fetch(port, "/"), "");
    EXPECT_FALSE(mainQueue.runDelayed(30s));
}

TEST_F(RecordTest, APortThatIsNoLongerProxiedToIsNotTriedAgain) {
    using boost::asio::ip::tcp;
    using namespace std::chrono_literals;
    boost::asio::io_context context;
    const tcp::acceptor taken(context, tcp::endpoint(tcp::v4(), 0));
    const std::int64_t port = taken.local_endpoint().port();
    fileHoldsFolder(port);
    servePrintsProxyTo(port);
    startOnFile();
    refresh();
    servePrints("{}");
    refresh();
    EXPECT_TRUE(mainQueue.runDelayed(1s));
    EXPECT_FALSE(mainQueue.runDelayed(2s));
}

} // namespace
} // namespace brevane::test
