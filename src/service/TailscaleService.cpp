// SPDX-License-Identifier: MIT
#include "TailscaleService.h"

#include "CommandBuilding.h"
#include "EntryExtraction.h"
#include "EntryPorts.h"
#include "Path.h"
#include "ServeConfigJSON.h"
#include "TailscaleStatusJSON.h"
#include "Text.h"
#include "UrlPort.h"

#include <algorithm>
#include <future>
#include <system_error>
#include <utility>
#include <vector>

namespace brevane {

namespace {

constexpr auto firstRetryDelay = std::chrono::seconds(1);
constexpr auto longestRetryDelay = std::chrono::seconds(30);

std::chrono::milliseconds patienceWith(bool background) {
    return background ? CommandRunner::backgroundPatience : std::chrono::milliseconds(0);
}

std::string failureMessage(const CommandRunner::Result& result) {
    const std::string_view message = trimmedOfWhitespaceAndNewlines(result.output);
    return message.empty() ? "Command failed (exit " + std::to_string(result.status) + ")"
                           : std::string(message);
}

} // namespace

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
      managedServers_(record_, pool, managedServerInfo), retryDelay_(firstRetryDelay) {
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
    struct First {
        std::promise<ManagedServerRecord::Entries> recorded;
        std::atomic_flag isOver; // set by the reader, which then delivers here, or by the timeout
    };
    const auto first = std::make_shared<First>();
    auto recorded = first->recorded.get_future();
    record_.read([first, isFirst = true, &main = mainQueue_,
                  weak = weak_from_this()](const ManagedServerRecord::Entries& found) mutable {
        if (std::exchange(isFirst, false) && !first->isOver.test_and_set()) {
            first->recorded.set_value(found);
            return;
        }
        main.post([weak, found] {
            const auto self = weak.lock();
            if (!self) return;
            self->managedServers_.loadPersistedManagedServers(found);
            self->startMissingServers();
        });
    });
    if (recorded.wait_for(patience) == std::future_status::ready || first->isOver.test_and_set())
        managedServers_.loadPersistedManagedServers(recorded.get());
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
    startMissingServers();
}

// Empty if the daemon is not running or its DNS name is unknown.
std::string TailscaleService::runningNode() const {
    return isConnected.get() ? dnsName.get() : std::string();
}

// Retries later on failure: a port may be taken only briefly, for example by a closing connection.
void TailscaleService::startMissingServers() {
    if (managedServers_.startMissingServers()) {
        retryDelay_ = firstRetryDelay;
        return;
    }
    if (std::exchange(isRetryPending_, true)) return;
    mainQueue_.postAfter(retryDelay_, [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self) return;
        self->isRetryPending_ = false;
        self->startMissingServers();
    });
    retryDelay_ = std::min(2 * retryDelay_, longestRetryDelay);
}

void TailscaleService::add(ServeMode mode, SourceType sourceType, const std::string& source,
                           const std::string& urlPath, bool background, Completion completion) {
    mainQueue_.post([self = shared_from_this()] { self->isLoading.set(true); });
    onQueue([=, node = dnsName.get()](const std::shared_ptr<TailscaleService>& self) {
        CommandRunner::Result result =
            isServedByUs(sourceType)
                ? self->addThroughServer(mode, servedSource(sourceType, source, urlPath, node),
                                         background)
                : self->runner_.runShellWithCode(buildAddCommand(self->tailscaleBin_, mode,
                                                                 sourceType, source, urlPath,
                                                                 background),
                                                 patienceWith(background));
        // On the background queue, since the output can be long.
        std::string error = result.status == 0 ? "" : failureMessage(result);
        self->mainQueue_.post(
            [self, result = std::move(result), error = std::move(error), completion]() mutable {
                self->finishAdd(std::move(result), std::move(error), completion);
            });
    });
}

TailscaleService::ServedSource TailscaleService::servedSource(SourceType sourceType,
                                                              const std::string& source,
                                                              const std::string& urlPath,
                                                              const std::string& node) {
    const ManagedServerInfo info{.path = std::string(trimmedOfWhitespace(source)),
                                 .isDirectory = sourceType == SourceType::directory};
    std::string mountPath = urlPath;
    if (!info.isDirectory && urlPath == "/") mountPath.append(lastPathComponent(info.path));
    return {.entry = {.info = info, .node = node}, .mountPath = mountPath};
}

CommandRunner::Result TailscaleService::addThroughServer(ServeMode mode, const ServedSource& source,
                                                         bool background) {
    const auto server = startRecordedServer(source.entry);
    if (!server) return {.output = server.error(), .status = -1};
    const std::int64_t port = (*server)->port;

    auto result = runner_.runShellWithCode(
        buildPortServeCommand(tailscaleBin_, mode, port, source.mountPath, background),
        patienceWith(background));
    if (result.status == 0) {
        mainQueue_.post([self = shared_from_this(), server = *server, entry = source.entry] {
            self->managedServers_.registerServer(server, entry);
        });
    } else {
        ManagedServers::stop(**server);
        // A background command that was ended on quitting may already have created its share.
        if (!background || !isInterrupted_) record_.change({}, {port});
    }
    return result;
}

std::expected<std::shared_ptr<FileHTTPServer>, std::string>
TailscaleService::startRecordedServer(const ManagedServerRecord::Entry& entry) {
    constexpr auto patience = std::chrono::seconds(10);
    if (!isUtf8(entry.info.path))
        return std::unexpected("Shares could not be saved: " +
                               std::make_error_code(std::errc::illegal_byte_sequence).message());

    std::string root = ManagedServers::rootFolder(entry.info);
    if (entry.info.isDirectory && !root.ends_with('/')) root += '/';
    // The system may pick a port recorded for another share whose server is not running. The
    // listener is held meanwhile, so that the system picks another port.
    std::vector<std::shared_ptr<FileHTTPServer>> passedOver;
    while (true) {
        auto server = std::make_shared<FileHTTPServer>(root, pool_);
        const auto port = server->startListener(0);
        const bool isUsable = port && record_.claim(*port, entry, patience);
        if (port && !isUsable) {
            passedOver.push_back(std::move(server));
            continue;
        }
        for (const auto& other : passedOver)
            ManagedServers::stop(*other);
        if (!port) return std::unexpected("Failed to start file server: " + port.error().message());
        return server;
    }
}

void TailscaleService::finishAdd(CommandRunner::Result result, std::string error,
                                 const Completion& completion) {
    const bool success = result.status == 0;
    lastOutput.set(std::move(result.output));
    isLoading.set(false);
    if (success) {
        lastError.set(std::nullopt);
        refresh();
    } else {
        lastError.set(std::move(error));
    }
    completion(success, *lastOutput.get());
}

void TailscaleService::stopEntry(const ServeEntry& entry, Completion completion) {
    // Always "serve" and "--https=": the command clears a funnel too.
    const std::string line = tailscaleBin_ + " serve --https=" + stopPort(entry) + " off";
    const auto localPort = explicitPort(entry.handlerDetail);
    onQueue([=](const std::shared_ptr<TailscaleService>& self) {
        const auto result = self->runner_.runShellWithCode(line);
        self->mainQueue_.post([=] {
            if (result.status == 0 && localPort)
                self->managedServers_.forget(*localPort, self->dnsName.get());
            self->refresh();
            completion(result.status == 0, result.output);
        });
    });
}

void TailscaleService::resetServes(Completion completion) {
    reset("serve", std::move(completion));
}

void TailscaleService::resetFunnels(Completion completion) {
    reset("funnel", std::move(completion));
}

void TailscaleService::reset(const std::string& subcommand, Completion completion) {
    onQueue([=](const std::shared_ptr<TailscaleService>& self) {
        const auto result =
            self->runner_.runShellWithCode(self->tailscaleBin_ + " " + subcommand + " reset");
        self->mainQueue_.post([=] {
            // Either reset makes the daemon drop every share, so no server is needed.
            if (result.status == 0)
                self->managedServers_.killAllManagedServers(self->dnsName.get());
            self->refresh();
            completion(result.status == 0, result.output);
        });
    });
}

void TailscaleService::resetAll(std::function<void()> completion) {
    onQueue([=](const std::shared_ptr<TailscaleService>& self) {
        static_cast<void>(self->runner_.runShell(self->tailscaleBin_ + " serve reset"));
        static_cast<void>(self->runner_.runShell(self->tailscaleBin_ + " funnel reset"));
        self->mainQueue_.post([=] {
            self->managedServers_.killAllManagedServers(self->dnsName.get());
            self->refresh();
            completion();
        });
    });
}

void TailscaleService::saveRecord() {
    constexpr auto patience = std::chrono::seconds(10);
    const auto isAnswered = std::make_shared<std::atomic<bool>>(false);
    record_.save([isAnswered, &main = mainQueue_, weak = weak_from_this()](std::error_code error) {
        *isAnswered = true;
        if (!error) return;
        main.post([weak, error] {
            if (const auto self = weak.lock()) self->sayUnsaved(error.message());
        });
    });
    mainQueue_.postAfter(patience, [isAnswered, weak = weak_from_this()] {
        const auto self = weak.lock();
        if (self && !*isAnswered) self->sayUnsaved("the disk does not answer");
    });
}

void TailscaleService::sayUnsaved(const std::string& reason) {
    if (!lastError.get()) lastError.set("Shares could not be saved: " + reason);
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
