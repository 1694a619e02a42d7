// SPDX-License-Identifier: MIT
#include "TailscaleService.h"

#include "CommandBuilding.h"
#include "EntryPorts.h"
#include "Path.h"
#include "Text.h"
#include "UrlPort.h"

#include <system_error>
#include <utility>
#include <vector>

namespace brevane {

namespace {

std::chrono::milliseconds patienceWith(bool background) {
    return background ? CommandRunner::backgroundPatience : std::chrono::milliseconds(0);
}

} // namespace

void TailscaleService::add(ServeMode mode, SourceType sourceType, const std::string& source,
                           const std::string& urlPath, bool background, Completion completion) {
    mainQueue_.post([self = shared_from_this()] { self->isLoading.set(true); });
    onQueue([=, node = dnsName.get()](const std::shared_ptr<TailscaleService>& self) {
        const bool needsServer =
            sourceType == SourceType::file || sourceType == SourceType::directory;
        const CommandRunner::Result result =
            needsServer ? self->addThroughServer(
                              mode, servedSource(sourceType, source, urlPath, node), background)
                        : self->runner_.runShellWithCode(buildAddCommand(self->tailscaleBin_, mode,
                                                                         sourceType, source,
                                                                         urlPath, background),
                                                         patienceWith(background));
        self->mainQueue_.post([self, result, completion] { self->finishAdd(result, completion); });
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
        // A background command that quitting has ended may have made its share just before.
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
    // A port of another share's, whose server does not run at present, is not taken from it. Its
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

void TailscaleService::finishAdd(const CommandRunner::Result& result,
                                 const Completion& completion) {
    const bool success = result.status == 0;
    lastOutput.set(result.output);
    isLoading.set(false);
    if (success) {
        lastError.set(std::nullopt);
        refresh();
    } else {
        const std::string message(trimmedOfWhitespaceAndNewlines(result.output));
        lastError.set(message.empty()
                          ? "Command failed (exit " + std::to_string(result.status) + ")"
                          : message);
    }
    completion(success, result.output);
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
            // Either reset makes the daemon drop every share, so no server is needed any more.
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

} // namespace brevane
