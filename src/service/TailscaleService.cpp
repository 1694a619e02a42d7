// SPDX-License-Identifier: MIT
#include "TailscaleService.h"

#include "EntryExtraction.h"
#include "ServeConfigJSON.h"
#include "TailscaleStatusJSON.h"
#include "Text.h"

#include <utility>

namespace brevane {

std::shared_ptr<TailscaleService> TailscaleService::create(Configuration configuration,
                                                           MainQueue& mainQueue, SerialQueue& queue,
                                                           Preferences& preferences,
                                                           ServerPool& pool) {
    return std::shared_ptr<TailscaleService>(
        new TailscaleService(std::move(configuration), mainQueue, queue, preferences, pool));
}

TailscaleService::TailscaleService(Configuration configuration, MainQueue& main,
                                   SerialQueue& background, Preferences& preferences,
                                   ServerPool& threads)
    : tailscaleBin(configuration.tailscaleBin), mainQueue(main), queue(background), pool(threads),
      runner(std::move(configuration)), managedServers(preferences, threads, managedServerInfo) {
    const auto forward = [this](Announcement& willChange) {
        return willChange.subscribe([this] { objectWillChange.announce(); });
    };
    forwarding = {forward(dnsName.willChange),          forward(tailscaleIP.willChange),
                  forward(isConnected.willChange),      forward(hostname.willChange),
                  forward(entries.willChange),          forward(isLoading.willChange),
                  forward(lastError.willChange),        forward(lastOutput.willChange),
                  forward(managedServerInfo.willChange)};
    managedServers.loadPersistedManagedServers();
}

TailscaleService::~TailscaleService() = default;

void TailscaleService::refresh() {
    mainQueue.post([self = shared_from_this()] {
        self->isLoading.set(true);
        self->lastError.set(std::nullopt);
    });
    onQueue([](const std::shared_ptr<TailscaleService>& self) {
        std::string status = self->runner.runShell(self->tailscaleBin + " status --json");
        std::string serve = self->runner.runShell(self->tailscaleBin + " serve status --json");
        self->mainQueue.post([self, status = std::move(status), serve = std::move(serve)] {
            self->parseStatus(status);
            self->parseServeConfig(serve);
            self->isLoading.set(false);
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
    managedServers.restoreManagedServersIfNeeded(entries.get());
}

void TailscaleService::interruptCommands() {
    runner.interrupt();
}

void TailscaleService::onQueue(std::function<void(const std::shared_ptr<TailscaleService>&)> work) {
    queue.post([weak = weak_from_this(), work = std::move(work)] {
        if (const auto self = weak.lock()) work(self);
    });
}

} // namespace brevane
