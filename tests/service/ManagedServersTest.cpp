// SPDX-License-Identifier: MIT
#include "HttpClient.h"
#include "ServiceTest.h"

#include <boost/asio/ip/tcp.hpp>

namespace brevane::test {
namespace {

using boost::asio::ip::tcp;

class ManagedServersTest : public ServiceTest {
protected:
    // A port on which nothing listens.
    static std::int64_t freePort() {
        boost::asio::io_context context;
        return tcp::acceptor(context, {tcp::v4(), 0}).local_endpoint().port();
    }

    using ServiceTest::recordHolds;
    void recordHolds(std::int64_t port, const Preferences::Record& values) {
        recordHolds(Record{{std::to_string(port), values}});
    }
};

TEST_F(ManagedServersTest, ARecordedFolderIsServedOnItsOldPortAfterTheFirstRefresh) {
    const auto port = freePort();
    writeFile(folder / "a.txt", "content");
    recordHolds(port, {{"path", folder.path.string()}, {"type", "directory"}});
    servePrintsProxyTo(port);
    start();
    EXPECT_EQ(service->managedServerInfo->at(port),
              (ManagedServerInfo{folder.path.string(), true}));
    EXPECT_EQ(fetch(port, "/a.txt"), "");
    refresh();
    EXPECT_EQ(fetch(port, "/a.txt"), "content");
    const int writes = this->writes(); // the refresh may have added the node's name
    refresh();
    EXPECT_EQ(this->writes(), writes);
}

TEST_F(ManagedServersTest, ARecordedPortThatNothingProxiesToIsForgotten) {
    recordHolds(49231, {{"path", "/x"}, {"type", "directory"}});
    start();
    refresh();
    EXPECT_TRUE(service->managedServerInfo->empty());
    EXPECT_TRUE(record().empty());
    EXPECT_EQ(writes(), 1);
}

TEST_F(ManagedServersTest, ARecordedFileIsServedOutOfItsFolder) {
    const auto port = freePort();
    writeFile(folder / "a.pdf", "content");
    recordHolds(port, {{"path", (folder / "a.pdf").string()}, {"type", "file"}});
    servePrintsProxyTo(port);
    start();
    refresh();
    EXPECT_EQ(fetch(port, "/a.pdf"), "content");
}

TEST_F(ManagedServersTest, AMissingOrOtherTypeIsAFile) {
    recordHolds(
        Record{{"1", {{"path", "/x/a"}}}, {"2", {{"path", "/x/b"}, {"type", "Directory"}}}});
    start();
    EXPECT_FALSE(service->managedServerInfo->at(1).isDirectory);
    EXPECT_FALSE(service->managedServerInfo->at(2).isDirectory);
}

TEST_F(ManagedServersTest, KeysAreSignedDecimalNumbersAndPathsAreNeeded) {
    recordHolds(Record{{"+49231", {{"path", "/plus"}}},
                       {"-5", {{"path", "/minus"}}},
                       {"", {{"path", "/empty"}}},
                       {"+", {{"path", "/sign"}}},
                       {"+-1", {{"path", "/signs"}}},
                       {" 1", {{"path", "/blank"}}},
                       {"1x", {{"path", "/letter"}}},
                       {"0x10", {{"path", "/hex"}}},
                       {"99999999999999999999", {{"path", "/huge"}}},
                       {"7", {{"type", "directory"}}}});
    start();
    EXPECT_EQ(*service->managedServerInfo,
              (ManagedServers::InfoMap{{49231, {"/plus", false}}, {-5, {"/minus", false}}}));
    EXPECT_EQ(writes(), 0);
}

TEST_F(ManagedServersTest, APortOutsideTheRangeIsNeverStartedAndForgotten) {
    recordHolds(Record{{"70000", {{"path", "/a"}}}, {"-1", {{"path", "/b"}}}});
    servePrintsProxyTo(70000);
    start();
    refresh();
    EXPECT_TRUE(service->managedServerInfo->empty());
    EXPECT_TRUE(record().empty());
}

TEST_F(ManagedServersTest, ATargetWithoutAnExplicitPortReferencesNothing) {
    recordHolds(80, {{"path", "/x"}});
    servePrints(R"({"Web":{"h:443":{"Handlers":{"/":{"Proxy":"http://localhost/"}}}}})");
    start();
    refresh();
    EXPECT_TRUE(service->managedServerInfo->empty());
}

TEST_F(ManagedServersTest, OnlyProxiesReferenceAPort) {
    recordHolds(49231, {{"path", "/x"}});
    servePrints(R"({"Web":{"h:443":{"Handlers":{"/":{"Text":"http://127.0.0.1:49231"}}}}})");
    start();
    refresh();
    EXPECT_TRUE(service->managedServerInfo->empty());
}

TEST_F(ManagedServersTest, ForegroundAndFunnelProxiesReferenceAPortToo) {
    const auto port = freePort();
    recordHolds(port, {{"path", folder.path.string()}, {"type", "directory"}});
    servePrints(
        R"({"Foreground":{"x":{"Web":{"h:443":{"Handlers":{"/":{"Proxy":"http://elsewhere:)" +
        std::to_string(port) + R"("}}}},"AllowFunnel":{"h:443":true}}}})");
    start();
    refresh();
    EXPECT_EQ(service->managedServerInfo->count(port), 1u);
}

TEST_F(ManagedServersTest, ATakenPortIsTriedAgainAtEachRefresh) {
    boost::asio::io_context context;
    auto taken = std::make_optional<tcp::acceptor>(context, tcp::endpoint(tcp::v4(), 0));
    const std::int64_t port = taken->local_endpoint().port();
    writeFile(folder / "a.txt", "content");
    recordHolds(port, {{"path", folder.path.string()}, {"type", "directory"}});
    servePrintsProxyTo(port);
    start();
    refresh();
    EXPECT_EQ(*service->lastError, std::nullopt);
    EXPECT_EQ(service->managedServerInfo->count(port), 1u);
    taken.reset();
    refresh();
    EXPECT_EQ(fetch(port, "/a.txt"), "content");
}

TEST_F(ManagedServersTest, AnUnreadableServeStatusForgetsNothing) {
    recordHolds(49231, {{"path", "/x"}});
    servePrints("oops");
    start();
    refresh();
    EXPECT_EQ(service->managedServerInfo->count(49231), 1u);
    EXPECT_EQ(writes(), 0);
}

TEST_F(ManagedServersTest, ARunningServerIsLeftAlone) {
    const auto port = freePort();
    recordHolds(port, {{"path", folder.path.string()}, {"type", "directory"}});
    servePrintsProxyTo(port);
    start();
    refresh();
    // An accepted connection that has not sent its request yet belongs to the server that accepted
    // it.
    boost::asio::io_context context;
    tcp::socket socket(context);
    socket.connect({boost::asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(port)});
    refresh();
    boost::asio::write(socket, boost::asio::buffer(std::string("GET /none HTTP/1.1\r\n\r\n")));
    std::string answer;
    boost::system::error_code error;
    boost::asio::read(socket, boost::asio::dynamic_buffer(answer), error);
    EXPECT_TRUE(answer.starts_with("HTTP/1.1 404 "));
}

TEST_F(ManagedServersTest, AServerThatDoesNotRunAnyMoreIsReplaced) {
    writeFile(folder / "a.txt", "content");
    ManagedServerRecord record(preferences);
    Published<ManagedServers::InfoMap> infos{{}};
    ManagedServers servers(record, pool, infos);
    const auto ended = std::make_shared<FileHTTPServer>(folder.path.string(), pool);
    const std::int64_t port = ended->startListener(0).value();
    servers.registerServer(ended, {.info = {folder.path.string(), true}, .node = "h"});
    ManagedServers::stop(*ended);
    servers.restoreManagedServersIfNeeded(
        {proxyEntry("h:443", "http://127.0.0.1:" + std::to_string(port))}, "h");
    EXPECT_TRUE(servers.startMissingServers());
    EXPECT_EQ(fetch(port, "/a.txt"), "content");
}

TEST_F(ManagedServersTest, OnlyTheStaleOfTwoServersIsStopped) {
    const auto kept = freePort();
    start();
    servePrints("unreadable");
    ASSERT_TRUE(add(SourceType::directory, folder.path.string()).success);
    finishRefresh();
    const auto stale = service->managedServerInfo->begin()->first;
    auto infos = *service->managedServerInfo;
    infos[kept] = {folder.path.string(), true};
    service->managedServerInfo.set(infos);
    servePrintsProxyTo(kept);
    refresh();
    EXPECT_EQ(answerTo(stale, "GET / HTTP/1.1\r\n\r\n"), "");
    EXPECT_NE(answerTo(kept, "GET / HTTP/1.1\r\n\r\n"), "");
    EXPECT_EQ(record(), (Record{{std::to_string(kept),
                                 {{"path", folder.path.string()}, {"type", "directory"}}}}));
}

TEST_F(ManagedServersTest, AResetLeavesAnEmptyDictionaryInTheRecord) {
    recordHolds(49231, {{"path", "/x"}});
    start();
    bool completed = false;
    service->resetAll([&] { completed = true; });
    ASSERT_TRUE(mainQueue.runUntil([&] { return completed; }));
    EXPECT_TRUE(record().empty());
}

TEST_F(ManagedServersTest, TheEndOfTheServiceStopsServersAndKeepsTheRecord) {
    start();
    servePrints("unreadable");
    ASSERT_TRUE(add(SourceType::directory, folder.path.string()).success);
    finishRefresh();
    const auto port = service->managedServerInfo->begin()->first;
    service.reset();
    queue.reset(); // the task of the last command may still own the service
    EXPECT_EQ(answerTo(port, "GET / HTTP/1.1\r\n\r\n"), "");
    EXPECT_EQ(preferences.dictionary(ManagedServerRecord::managedServersKey)->size(), 1u);
}

} // namespace
} // namespace brevane::test
