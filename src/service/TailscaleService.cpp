// SPDX-License-Identifier: MIT
#include "TailscaleService.h"

#include "EntryExtraction.h"
#include "ServeConfigJSON.h"
#include "TailscaleStatusJSON.h"
#include "Text.h"

#include <future>
#include <utility>

namespace brevane {

std::shared_ptr<TailscaleService> TailscaleService::create(Configuration configuration,
                                                           MainQueue& mainQueue, SerialQueue& queue,
                                                           Preferences& preferences,
                                                           ServerPool& pool) {
    std::shared_ptr<TailscaleService> service(
        new TailscaleService(std::move(configuration), mainQueue, queue, preferences, pool));
    service->loadPersistedManagedServers();
    return service;
}

TailscaleService::TailscaleService(Configuration configuration, MainQueue& mainQueue,
                                   SerialQueue& queue, Preferences& preferences, ServerPool& pool)
    : tailscaleBin_(configuration.tailscaleBin), mainQueue_(mainQueue), queue_(queue), pool_(pool),
      runner_(std::move(configuration)), record_(preferences),
      managedServers_(record_, pool, managedServerInfo) {
    const auto forward = [this](Announcement& willChange) {
        return willChange.subscribe([this] { objectWillChange.announce(); });
    };
    forwarding_ = {forward(dnsName.willChange),          forward(tailscaleIP.willChange),
                   forward(isConnected.willChange),      forward(hostname.willChange),
                   forward(entries.willChange),          forward(isLoading.willChange),
                   forward(lastError.willChange),        forward(lastOutput.willChange),
                   forward(managedServerInfo.willChange)};
}

TailscaleService::~TailscaleService() = default;

void TailscaleService::loadPersistedManagedServers() {
    constexpr auto patience = std::chrono::milliseconds(200);
    struct Recorded {
        std::promise<ManagedServerRecord::Entries> read;
        std::atomic<bool> isLate = false;
    };
    const auto recorded = std::make_shared<Recorded>();
    auto firstRead = recorded->read.get_future();
    record_.read([recorded, &main = mainQueue_,
                  weak = weak_from_this()](const ManagedServerRecord::Entries& found) {
        recorded->read.set_value(found);
        if (!recorded->isLate) return;
        main.post([weak, found] {
            const auto self = weak.lock();
            if (!self) return;
            self->managedServers_.loadPersistedManagedServers(found);
            self->managedServers_.startMissingServers();
        });
    });
    firstRead.wait_for(patience);
    // Said before looking once more, so that one of the two threads sees what the other has done.
    recorded->isLate = true;
    if (firstRead.wait_for(patience.zero()) == std::future_status::ready)
        managedServers_.loadPersistedManagedServers(firstRead.get());
}

void TailscaleService::refresh() {
    mainQueue_.post([self = shared_from_this()] {
        self->isLoading.set(true);
        self->lastError.set(std::nullopt);
    });
    onQueue([](const std::shared_ptr<TailscaleService>& self) {
        std::string status = self->runner_.runShell(self->tailscaleBin_ + " status --json");
        std::string serve = self->runner_.runShell(self->tailscaleBin_ + " serve status --json");
        self->mainQueue_.post([self, status = std::move(status), serve = std::move(serve)] {
            self->parseStatus(status);
            self->parseServeConfig(serve);
            self->isLoading.set(false);
            self->saveRecord();
        });
    });
}

void TailscaleService::parseStatus(const std::string& text) {
    if (text.empty()) {
        isConnected.set(false);
        return;
    }
    const auto status = decodeTailscaleStatus(text);
    if (!status) {
        isConnected.set(false);
        if (!lastError.get())
            lastError.set("Status error: " + std::string(firstCharacters(text, 200)));
        return;
    }
    const auto self = status->selfNode.value_or(TailscaleStatusJSON::SelfNode{});
    isConnected.set(status->BackendState == "Running");
    hostname.set(self.HostName.value_or(""));
    std::string name = self.DNSName.value_or("");
    if (name.ends_with('.')) name.pop_back();
    dnsName.set(std::move(name));
    const auto addresses = self.TailscaleIPs.value_or(std::vector<std::string>{});
    tailscaleIP.set(addresses.empty() ? "" : addresses.front());
}

void TailscaleService::parseServeConfig(const std::string& text) {
    const auto config = decodeServeConfig(text);
    if (!config) {
        entries.set({});
        return;
    }
    entries.set(extractEntries(*config, dnsName.get()));
    managedServers_.restoreManagedServersIfNeeded(entries.get(), runningNode());
}

// Empty where the daemon does not run, or nobody knows under which name.
std::string TailscaleService::runningNode() const {
    return isConnected.get() ? dnsName.get() : std::string();
}

void TailscaleService::saveRecord() {
    record_.save([&main = mainQueue_, weak = weak_from_this()](std::error_code error) {
        if (!error) return;
        main.post([weak, error] {
            const auto self = weak.lock();
            if (self && !self->lastError.get())
                self->lastError.set("Shares could not be saved: " + error.message());
        });
    });
}

bool TailscaleService::waitForRecord(std::chrono::milliseconds limit) {
    return record_.wait(limit);
}

void TailscaleService::interruptCommands() {
    isInterrupted_ = true;
    runner_.interrupt();
}

void TailscaleService::onQueue(std::function<void(const std::shared_ptr<TailscaleService>&)> work) {
    queue_.post([weak = weak_from_this(), work = std::move(work)] {
        if (const auto self = weak.lock()) work(self);
    });
}

} // namespace brevane
