// SPDX-License-Identifier: MIT
//
// The service without a window: performs the operation in each line of standard input and answers
// it with the state afterwards. Quits at end of input.
//
// Usage: service-driver TAILSCALE SHELL PREFERENCES
//
//   ["add", label of the mode, label of the source type, source, URL path]
//   ["stop", host and port, target]    ["reset", "serve" or "funnel" or "all"]    ["refresh"]
//
// Each answer: {"success": bool, "rows": [[kind, URL path, detail, is a funnel]...],
// "managed": {port: path}, "error": text or null}

#include "FilePreferences.h"
#include "PumpedMainQueue.h"
#include "TailscaleService.h"

#include <boost/json.hpp>

#include <iostream>
#include <string>

using namespace brevane;
namespace json = boost::json;

namespace {

class Driver {
public:
    Driver(const std::string& tailscale, const std::string& shell, const std::string& file)
        : preferences_(file),
          service_(TailscaleService::create({tailscale, shell, "/usr/bin:/bin"}, mainQueue_, queue_,
                                            preferences_, pool_)) {}

    json::value run(const json::array& command) {
        const auto word = [&](std::size_t index) {
            return std::string(command.at(index).get_string());
        };
        isDone_ = false;
        success_ = true;
        if (word(0) == "add")
            service_->add(*fromRawValue<ServeMode>(word(1)), *fromRawValue<SourceType>(word(2)),
                          word(3), word(4), true, completion());
        else if (word(0) == "stop")
            service_->stopEntry(ServeEntry{.id = makeEntryId(),
                                           .isFunnel = false,
                                           .hostPort = word(1),
                                           .urlPath = "/",
                                           .handlerType = ServeEntry::HandlerType::proxy,
                                           .handlerDetail = word(2),
                                           .isBackground = true},
                                completion());
        else if (word(0) == "reset" && word(1) == "serve")
            service_->resetServes(completion());
        else if (word(0) == "reset" && word(1) == "funnel")
            service_->resetFunnels(completion());
        else if (word(0) == "reset")
            service_->resetAll([this] { isDone_ = true; });
        else
            isDone_ = true;
        mainQueue_.runUntil([this] { return isDone_; });
        finishRefresh();
        return state();
    }

private:
    TailscaleService::Completion completion() {
        return [this](bool success, const std::string&) {
            success_ = success;
            isDone_ = true;
        };
    }

    // Refreshes once more after the operation's own refresh; then the record has been written.
    void finishRefresh() {
        service_->refresh();
        bool isIdle = false;
        queue_.post([&] { mainQueue_.post([&] { isIdle = true; }); });
        mainQueue_.runUntil([&] { return isIdle; });
        service_->waitForRecord(std::chrono::minutes(1));
        mainQueue_.runPending();
    }

    json::value state() {
        json::array rows;
        for (const ServeEntry& entry : service_->entries.get())
            rows.push_back(
                {rawValue(entry.handlerType), entry.urlPath, entry.handlerDetail, entry.isFunnel});
        json::object managed;
        for (const auto& [port, info] : service_->managedServerInfo.get())
            managed[std::to_string(port)] = info.path;
        const auto& error = service_->lastError.get();
        return {{"success", success_},
                {"rows", rows},
                {"managed", managed},
                {"error", error ? json::value(*error) : json::value()}};
    }

    ServerPool pool_;
    FilePreferences preferences_;
    test::PumpedMainQueue mainQueue_;
    SerialQueue queue_{"tailscale"};
    std::shared_ptr<TailscaleService> service_;
    bool isDone_ = false;
    bool success_ = true;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    Driver driver(argv[1], argv[2], argv[3]);
    for (std::string line; std::getline(std::cin, line);)
        std::cout << driver.run(json::parse(line).get_array()) << std::endl;
    return 0;
}
