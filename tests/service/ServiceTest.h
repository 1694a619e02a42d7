// SPDX-License-Identifier: MIT
#pragma once

#include "FileHTTPServer.h"
#include "MemoryPreferences.h"
#include "PumpedMainQueue.h"
#include "SerialQueue.h"
#include "TailscaleService.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <latch>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace brevane::test {

/// A service whose tailscale is a script that logs its arguments and prints what the test has
/// prepared. The shell is the real one.
class ServiceTest : public testing::Test {
protected:
    ServiceTest() {
        script("cat \"$0.status\" 2>/dev/null", "cat \"$0.serve\" 2>/dev/null", "exit 0");
        statusPrints(R"({"BackendState":"Running","Self":{"DNSName":"h.tail.ts.net.",)"
                     R"("TailscaleIPs":["100.64.0.1"],"HostName":"h"}})");
        servePrints("{}");
    }

    ~ServiceTest() override {
        if (service) service->interruptCommands();
    }

    // Shell code for the two queries and for every other command.
    void script(const std::string& status, const std::string& serveStatus,
                const std::string& change) {
        writeFile(binary(), "#!/bin/sh\n"
                            "echo \"$*\" >> \"$0.log\"\n"
                            "case \"$*\" in\n"
                            "'status --json') " +
                                status +
                                " ;;\n"
                                "'serve status --json') " +
                                serveStatus +
                                " ;;\n"
                                "*) " +
                                change +
                                " ;;\n"
                                "esac\n");
        std::filesystem::permissions(binary(), std::filesystem::perms::owner_all);
    }
    void changesDo(const std::string& shellCode) {
        script("cat \"$0.status\"", "cat \"$0.serve\"", shellCode);
    }
    void statusPrints(const std::string& text) { writeFile(folder / "tailscale.status", text); }
    void servePrints(const std::string& text) { writeFile(folder / "tailscale.serve", text); }

    // Prints what the daemon lists for one background proxy on port 443.
    void servePrintsProxyTo(std::int64_t port) {
        servePrints(R"({"Web":{"h.tail.ts.net:443":{"Handlers":{"/":{"Proxy":"http://127.0.0.1:)" +
                    std::to_string(port) + R"("}}}}})");
    }

    void start() {
        service = TailscaleService::create({binary().string(), shell, searchPath}, mainQueue,
                                           *queue, preferences, pool);
    }

    // Runs the main queue until a refresh in progress has been applied.
    void finishRefresh() {
        ASSERT_TRUE(mainQueue.runUntil([&] { return service->isLoading.get(); }));
        ASSERT_TRUE(mainQueue.runUntil([&] { return !service->isLoading.get(); }));
    }
    void refresh() {
        service->refresh();
        finishRefresh();
    }

    // Waits for all tasks that are on the background queue now.
    void waitForQueue() {
        std::latch done(1);
        queue->post([&] { done.count_down(); });
        done.wait();
    }

    struct Outcome {
        bool success;
        std::string output;
    };
    TailscaleService::Completion completion() {
        outcome.reset();
        return [this](bool success, const std::string& output) { outcome = {success, output}; };
    }
    Outcome waitForOutcome() {
        EXPECT_TRUE(mainQueue.runUntil([&] { return outcome.has_value(); }));
        return outcome.value_or(Outcome{});
    }
    Outcome add(SourceType type, const std::string& source, const std::string& urlPath = "/",
                ServeMode mode = ServeMode::serve, bool background = true) {
        service->add(mode, type, source, urlPath, background, completion());
        return waitForOutcome();
    }

    // The commands run so far, the arguments of each on one line.
    std::vector<std::string> commands() {
        std::istringstream log(readFile(folder / "tailscale.log"));
        std::vector<std::string> lines;
        for (std::string line; std::getline(log, line);)
            lines.push_back(line);
        return lines;
    }

    // The current record; writes() counts the writes since recordHolds().
    using Record = std::map<std::string, Preferences::Record>;
    Record record() {
        EXPECT_TRUE(service->waitForRecord(std::chrono::minutes(1)));
        const auto stored = preferences.dictionary(ManagedServerRecord::managedServersKey);
        Record found;
        for (const auto& [name, entry] : *stored)
            found[name] = std::get<Preferences::Record>(entry);
        return found;
    }
    int writes() {
        EXPECT_TRUE(service->waitForRecord(std::chrono::minutes(1)));
        return preferences.writes;
    }
    void recordHolds(const Record& record) {
        Preferences::Changes changes;
        for (const auto& [name, values] : record)
            changes[name] = values;
        EXPECT_FALSE(preferences.update({{ManagedServerRecord::managedServersKey, changes}}));
        preferences.writes = 0;
    }

    std::filesystem::path binary() { return folder / "tailscale"; }

    TemporaryFolder folder;
    std::string shell = "/bin/zsh";
    std::string searchPath = "/usr/bin:/bin";
    MemoryPreferences preferences;
    ServerPool pool;
    PumpedMainQueue mainQueue;
    std::unique_ptr<SerialQueue> queue = std::make_unique<SerialQueue>("tailscale");
    std::shared_ptr<TailscaleService> service;
    std::optional<Outcome> outcome;
};

/// A proxy entry with this host and port.
inline ServeEntry proxyEntry(const std::string& hostPort, const std::string& target) {
    return {.id = makeEntryId(),
            .isFunnel = false,
            .hostPort = hostPort,
            .urlPath = "/",
            .handlerType = ServeEntry::HandlerType::proxy,
            .handlerDetail = target,
            .isBackground = true};
}

} // namespace brevane::test
