// SPDX-License-Identifier: MIT
#include "RecordTest.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <latch>
#include <optional>
#include <string>

namespace brevane::test {
namespace {

namespace fs = std::filesystem;

// Makes every write fail, even for root: a folder has the name of the temporary file.
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
    // The refresh that follows the stop must not find the place empty for a moment.
    refresh();
    EXPECT_TRUE(service->waitForRecord(std::chrono::minutes(1)));
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

TEST_F(RecordTest, APipeInTheFilesPlaceIsNotWaitedFor) {
    ASSERT_EQ(std::system(("mkfifo " + file.string()).c_str()), 0);
    startOnFile();
    service->refresh();
    EXPECT_TRUE(mainQueue.runUntil([&] { return service->lastError->has_value(); }));
    EXPECT_EQ(*service->lastError, "Shares could not be saved: Operation not supported");
}

/// Preferences on a disk that hangs until `answers` is counted down.
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

} // namespace
} // namespace brevane::test
