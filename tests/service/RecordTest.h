// SPDX-License-Identifier: MIT
#pragma once

#include "FilePreferences.h"
#include "HttpClient.h"
#include "ServiceTest.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/json.hpp>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>

namespace brevane::test {

/// A service whose record is in a file on a disk that may fail.
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

    // Destroys the service. Afterwards all pending changes are on disk.
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

    boost::json::object contents() {
        boost::system::error_code error;
        const boost::json::value parsed = boost::json::parse(readFile(file), error);
        return parsed.is_object() ? parsed.get_object() : boost::json::object();
    }
    boost::json::value value(const std::string& key, const std::string& name) {
        const boost::json::object all = contents();
        const boost::json::value* const dictionary = all.if_contains(key);
        if (dictionary == nullptr || !dictionary->is_object()) return nullptr;
        const boost::json::value* const found = dictionary->get_object().if_contains(name);
        return found == nullptr ? boost::json::value() : *found;
    }
    bool isRecorded(std::int64_t port) {
        return !value("TailscaleManagedServers", std::to_string(port)).is_null();
    }
    std::string nodeOf(std::int64_t port) {
        const boost::json::value node = value("TailscaleManagedServerNodes", std::to_string(port));
        return node.is_string() ? std::string(node.get_string()) : "";
    }

    // Waits for a condition that becomes true on disk without further action. Returns false on
    // timeout.
    static bool eventually(const std::function<bool()>& condition) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > limit) return false;
            std::this_thread::yield();
        }
        return true;
    }

    // Starts the service with the record of one folder, which a proxy of this account leads to.
    // Returns its port.
    std::int64_t startServing(const std::string& name) {
        const auto port = freePort();
        writeFile(folder / "a.txt", "content");
        fileHoldsFolder(port, name);
        startOnFile();
        switchTo(name, port);
        EXPECT_EQ(fetch(port, "/a.txt"), "content");
        return port;
    }
    // Switches to an account whose daemon has a proxy to `port`, or none.
    void switchTo(const std::string& name, std::optional<std::int64_t> port = {}) {
        account(name);
        if (port)
            servePrintsProxyTo(*port);
        else
            servePrints("{}");
        refresh();
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

    std::filesystem::path file = folder / "preferences.json";
    FilePreferences stored{file};
};

} // namespace brevane::test
