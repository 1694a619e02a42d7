// SPDX-License-Identifier: MIT
#include "FilePreferences.h"
#include "HttpClient.h"
#include "ServiceTest.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/json.hpp>

#include <chrono>
#include <filesystem>
#include <latch>
#include <optional>
#include <string>
#include <thread>

namespace brevane::test {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

/// A service whose record is in a file, on a disk that may fail.
class RecordTest : public ServiceTest {
protected:
    ~RecordTest() override {
        if (service) service->interruptCommands();
        service.reset();
        queue.reset();
    }

    static std::int64_t freePort() {
        using boost::asio::ip::tcp;
        boost::asio::io_context context;
        return tcp::acceptor(context, {tcp::v4(), 0}).local_endpoint().port();
    }

    void startOnFile() {
        service = TailscaleService::create({binary().string(), shell, searchPath}, mainQueue,
                                           *queue, stored, pool);
    }

    // Everything that is to be written is on disk afterwards.
    void quit() {
        service->interruptCommands();
        service.reset();
        queue.reset();
        mainQueue.dropPending();
        queue = std::make_unique<SerialQueue>("tailscale");
    }

    void account(const std::string& name, const std::string& state = "Running") {
        statusPrints(R"({"BackendState":")" + state + R"(","Self":{"DNSName":")" + name +
                     R"(.","HostName":"h"}})");
    }

    void fileHolds(const std::string& text) { writeFile(file, text); }
    void fileHoldsFolder(std::int64_t port, const std::string& node = "") {
        const std::string name = std::to_string(port);
        std::string text = R"({"TailscaleManagedServers":{")" + name + R"(":{"path":")" +
                           folder.path.string() + R"(","type":"directory"}})";
        if (!node.empty())
            text += R"(,"TailscaleManagedServerNodes":{")" + name + R"(":")" + node + R"("})";
        fileHolds(text + "}");
    }

    json::object contents() {
        boost::system::error_code error;
        const json::value parsed = json::parse(readFile(file), error);
        return parsed.is_object() ? parsed.get_object() : json::object();
    }
    json::value value(const std::string& key, const std::string& name) {
        const json::object all = contents();
        const json::value* const dictionary = all.if_contains(key);
        if (dictionary == nullptr || !dictionary->is_object()) return nullptr;
        const json::value* const found = dictionary->get_object().if_contains(name);
        return found == nullptr ? json::value() : *found;
    }
    bool isRecorded(std::int64_t port) {
        return !value("TailscaleManagedServers", std::to_string(port)).is_null();
    }
    std::string nodeOf(std::int64_t port) {
        const json::value node = value("TailscaleManagedServerNodes", std::to_string(port));
        return node.is_string() ? std::string(node.get_string()) : "";
    }

    // What must become true on disk while nothing else happens.
    static bool eventually(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit) return false;
            std::this_thread::yield();
        }
        return true;
    }

    std::int64_t addFolder() {
        EXPECT_TRUE(add(SourceType::directory, folder.path.string()).success);
        for (const std::string& command : commands())
            if (!command.ends_with("status --json"))
                return std::stoll(command.substr(command.rfind(' ') + 1));
        return 0;
    }

    void runReset() {
        service->resetServes(completion());
        EXPECT_TRUE(waitForOutcome().success);
    }

    fs::path file = folder / "preferences.json";
    FilePreferences stored{file};
};

// A disk that takes no file, whoever asks: the temporary one cannot be made.
class FullDisk {
public:
    explicit FullDisk(const fs::path& file) : inTheWay(file.string() + ".new") {
        fs::create_directories(inTheWay / "full");
    }
    ~FullDisk() { fs::remove_all(inTheWay); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    fs::path inTheWay;
};

TEST_F(RecordTest, SwitchingAccountsAndBackForgetsNothing) {
    const auto port = freePort();
    writeFile(folder / "a.txt", "content");
    fileHoldsFolder(port);
    account("a.ts.net");
    servePrintsProxyTo(port);
    startOnFile();
    refresh();
    EXPECT_EQ(fetch(port, "/a.txt"), "content");
    account("b.ts.net");
    servePrints("{}");
    refresh();
    account("a.ts.net");
    servePrintsProxyTo(port);
    refresh();
    EXPECT_EQ(fetch(port, "/a.txt"), "content");
    quit();
    EXPECT_TRUE(isRecorded(port));
    EXPECT_EQ(nodeOf(port), "a.ts.net");
}

TEST_F(RecordTest, WhatNothingLeadsToUnderAnotherAccountIsNotServedMeanwhile) {
    const auto port = freePort();
    fileHoldsFolder(port);
    account("a.ts.net");
    servePrintsProxyTo(port);
    startOnFile();
    refresh();
    EXPECT_NE(fetch(port, "/"), "");
    account("b.ts.net");
    servePrints("{}");
    refresh();
    EXPECT_EQ(fetch(port, "/"), "");
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
    const auto port = freePort();
    fileHoldsFolder(port, "a.ts.net");
    account("a.ts.net");
    servePrintsProxyTo(port);
    startOnFile();
    refresh();
    account("b.ts.net");
    servePrints("{}");
    runReset();
    EXPECT_TRUE(service->managedServerInfo->empty());
    finishRefresh();
    account("a.ts.net");
    servePrintsProxyTo(port);
    refresh();
    EXPECT_NE(fetch(port, "/"), "");
    quit();
    EXPECT_TRUE(isRecorded(port));
    EXPECT_EQ(nodeOf(port), "a.ts.net");
}

TEST_F(RecordTest, ASwitchBetweenTheTwoQueriesOfOneRefreshIsMadeGoodByTheNext) {
    const auto port = freePort();
    fileHoldsFolder(port, "a.ts.net");
    account("a.ts.net");
    servePrintsProxyTo(port);
    startOnFile();
    refresh();
    servePrints("{}"); // of the other account already
    refresh();
    account("b.ts.net");
    refresh();
    account("a.ts.net");
    servePrintsProxyTo(port);
    refresh();
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

TEST_F(RecordTest, ARecordThatCouldNotBeReadIsMergedBeforeAnythingIsWritten) {
    fs::create_directory(file);
    startOnFile();
    EXPECT_TRUE(service->managedServerInfo->empty());
    fs::remove(file);
    fileHoldsFolder(49231);
    servePrints("nothing readable");
    const auto port = addFolder();
    finishRefresh();
    EXPECT_TRUE(service->managedServerInfo->contains(49231));
    EXPECT_TRUE(service->managedServerInfo->contains(port));
    quit();
    EXPECT_TRUE(isRecorded(49231));
    EXPECT_TRUE(isRecorded(port));
}

TEST_F(RecordTest, ARecordThatCouldNotBeReadIsReadAgainAtTheNextRefreshAndServed) {
    const auto port = freePort();
    fs::create_directory(file);
    servePrintsProxyTo(port);
    startOnFile();
    refresh();
    EXPECT_TRUE(service->waitForRecord(std::chrono::minutes(1)));
    fs::remove(file);
    fileHoldsFolder(port);
    service->refresh();
    EXPECT_TRUE(mainQueue.runUntil([&] { return service->managedServerInfo->contains(port); }));
    EXPECT_NE(fetch(port, "/"), "");
}

TEST_F(RecordTest, ARecordWhoseFolderIsMountedLaterIsTakenIn) {
    const auto port = freePort();
    servePrintsProxyTo(port);
    startOnFile();
    refresh();
    EXPECT_TRUE(service->waitForRecord(std::chrono::minutes(1)));
    fileHoldsFolder(port);
    service->refresh();
    EXPECT_TRUE(mainQueue.runUntil([&] { return service->managedServerInfo->contains(port); }));
    EXPECT_NE(fetch(port, "/"), "");
}

TEST_F(RecordTest, ARecordThatCannotBeReadIsSaidAfterARefresh) {
    fs::create_directory(file);
    startOnFile();
    service->refresh();
    EXPECT_TRUE(mainQueue.runUntil([&] { return service->lastError->has_value(); }));
    EXPECT_EQ(*service->lastError, "Shares could not be saved: Is a directory");
}

TEST_F(RecordTest, WhatIsForgottenBeforeTheRecordCouldBeReadStaysForgotten) {
    fs::create_directory(file);
    startOnFile();
    servePrints("nothing readable");
    service->stopEntry(proxyEntry("h:443", "http://127.0.0.1:49231"), completion());
    waitForOutcome();
    fs::remove(file);
    fileHoldsFolder(49231);
    refresh();
    EXPECT_TRUE(eventually([&] { return !isRecorded(49231); }));
    quit();
    EXPECT_FALSE(isRecorded(49231));
}

TEST_F(RecordTest, ARecordThatCannotBeWrittenIsSaidAndWrittenAtTheNextRefresh) {
    startOnFile();
    servePrints("nothing readable");
    auto full = std::make_optional<FullDisk>(file);
    const auto port = addFolder();
    EXPECT_TRUE(mainQueue.runUntil([&] { return service->lastError->has_value(); }));
    EXPECT_TRUE(service->lastError->value().starts_with("Shares could not be saved: "));
    EXPECT_FALSE(isRecorded(port));
    full.reset();
    refresh();
    EXPECT_TRUE(eventually([&] { return isRecorded(port); }));
    EXPECT_EQ(*service->lastError, std::nullopt);
}

TEST_F(RecordTest, ARecordThatCouldNotBeWrittenIsWrittenAtQuitting) {
    startOnFile();
    servePrints("nothing readable");
    auto full = std::make_optional<FullDisk>(file);
    const auto port = addFolder();
    finishRefresh();
    full.reset();
    quit();
    EXPECT_TRUE(isRecorded(port));
}

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

TEST_F(RecordTest, ARecordThatIsRemovedWhileRunningIsWrittenWhole) {
    const auto port = freePort();
    fileHoldsFolder(port);
    servePrints("nothing readable");
    startOnFile();
    refresh();
    fs::remove(file);
    const auto added = addFolder();
    finishRefresh();
    quit();
    EXPECT_TRUE(isRecorded(port));
    EXPECT_TRUE(isRecorded(added));
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

TEST_F(RecordTest, APipeInTheFilesPlaceIsNotWaitedFor) {
    ASSERT_EQ(std::system(("mkfifo " + file.string()).c_str()), 0);
    startOnFile();
    service->refresh();
    EXPECT_TRUE(mainQueue.runUntil([&] { return service->lastError->has_value(); }));
    EXPECT_EQ(*service->lastError, "Shares could not be saved: Operation not supported");
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

/// Preferences on a disk that answers when it is told to.
class HungPreferences final : public Preferences {
public:
    [[nodiscard]] std::expected<Dictionary, std::error_code>
    dictionary(const std::string& key) const override {
        answers.wait();
        return disk.dictionary(key);
    }
    [[nodiscard]] std::error_code
    update(const std::map<std::string, Changes>& dictionaries) override {
        answers.wait();
        return disk.update(dictionaries);
    }

    MemoryPreferences disk;
    std::latch answers{1};
};

class HungDisk : public RecordTest {
protected:
    ~HungDisk() override {
        if (!answered) answer();
        if (service) service->interruptCommands();
        service.reset();
        queue.reset();
    }
    void startOnHungDisk() {
        service = TailscaleService::create({binary().string(), shell, searchPath}, mainQueue,
                                           *queue, hung, pool);
    }
    void answer() {
        hung.answers.count_down();
        answered = true;
    }

    HungPreferences hung;
    bool answered = false;
};

TEST_F(HungDisk, HoldsUpNeitherTheStartNorARefreshAndIsSaid) {
    startOnHungDisk();
    refresh();
    EXPECT_TRUE(*service->isConnected);
    EXPECT_TRUE(mainQueue.runDelayed(std::chrono::seconds(10)));
    EXPECT_EQ(*service->lastError, "Shares could not be saved: the disk does not answer");
}

TEST_F(HungDisk, TheRecordIsTakenInAndServedOnceItAnswers) {
    const auto port = freePort();
    EXPECT_FALSE(hung.disk.update(
        {{ManagedServerRecord::managedServersKey,
          {{std::to_string(port),
            Preferences::Record{{"path", folder.path.string()}, {"type", "directory"}}}}}}));
    servePrintsProxyTo(port);
    startOnHungDisk();
    refresh();
    EXPECT_TRUE(service->managedServerInfo->empty());
    answer();
    EXPECT_TRUE(mainQueue.runUntil([&] { return service->managedServerInfo->contains(port); }));
    EXPECT_NE(fetch(port, "/"), "");
}

TEST_F(HungDisk, HoldsUpNoStopAndNoReset) {
    startOnHungDisk();
    service->stopEntry(proxyEntry("h:443", "http://127.0.0.1:49231"), completion());
    EXPECT_TRUE(waitForOutcome().success);
    runReset();
    finishRefresh();
}

TEST_F(HungDisk, QuittingWaitsForWhatIsToBeWritten) {
    startOnHungDisk();
    service->stopEntry(proxyEntry("h:443", "http://127.0.0.1:49231"), completion());
    EXPECT_TRUE(waitForOutcome().success);
    answer();
    quit();
    EXPECT_EQ(hung.disk.writes, 1);
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
