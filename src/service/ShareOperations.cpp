// SPDX-License-Identifier: MIT
#include "TailscaleService.h"

#include "CommandBuilding.h"
#include "EntryPorts.h"
#include "Path.h"
#include "Text.h"
#include "UrlPort.h"

#include <utility>

namespace brevane {

namespace {

std::chrono::milliseconds patienceWith(bool background) {
    return background ? CommandRunner::backgroundPatience : std::chrono::milliseconds(0);
}

} // namespace

void TailscaleService::add(ServeMode mode, SourceType sourceType, const std::string& source,
                           const std::string& urlPath, bool background, Completion completion) {
    mainQueue.post([self = shared_from_this()] { self->isLoading.set(true); });
    onQueue([=](const std::shared_ptr<TailscaleService>& self) {
        const bool needsServer =
            sourceType == SourceType::file || sourceType == SourceType::directory;
        const CommandRunner::Result result =
            needsServer ? self->addThroughServer(mode, sourceType, source, urlPath, background)
                        : self->runner.runShellWithCode(buildAddCommand(self->tailscaleBin, mode,
                                                                        sourceType, source, urlPath,
                                                                        background),
                                                        patienceWith(background));
        self->mainQueue.post([self, result, completion] { self->finishAdd(result, completion); });
    });
}

CommandRunner::Result TailscaleService::addThroughServer(ServeMode mode, SourceType sourceType,
                                                         const std::string& source,
                                                         const std::string& urlPath,
                                                         bool background) {
    const ManagedServerInfo info{.path = std::string(trimmedOfWhitespace(source)),
                                 .isDirectory = sourceType == SourceType::directory};
    std::string mountPath = urlPath;
    if (!info.isDirectory && urlPath == "/") mountPath.append(lastPathComponent(info.path));

    std::string root = ManagedServers::rootFolder(info);
    if (info.isDirectory && !root.ends_with('/')) root += '/';
    auto server = std::make_shared<FileHTTPServer>(root, pool);
    const auto port = server->startListener(0);
    if (!port)
        return {.output = "Failed to start file server: " + port.error().message(), .status = -1};

    auto result = runner.runShellWithCode(
        buildPortServeCommand(tailscaleBin, mode, *port, mountPath, background),
        patienceWith(background));
    if (result.status == 0)
        mainQueue.post([self = shared_from_this(), server, info] {
            self->managedServers.registerServer(server, info);
        });
    else
        ManagedServers::stop(*server);
    return result;
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
    const std::string line = tailscaleBin + " serve --https=" + stopPort(entry) + " off";
    const auto localPort = explicitPort(entry.handlerDetail);
    onQueue([=](const std::shared_ptr<TailscaleService>& self) {
        const auto result = self->runner.runShellWithCode(line);
        self->mainQueue.post([=] {
            if (result.status == 0 && localPort) self->managedServers.forget(*localPort);
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
            self->runner.runShellWithCode(self->tailscaleBin + " " + subcommand + " reset");
        self->mainQueue.post([=] {
            // Either reset makes the daemon drop every share, so no server is needed any more.
            if (result.status == 0) self->managedServers.killAllManagedServers();
            self->refresh();
            completion(result.status == 0, result.output);
        });
    });
}

void TailscaleService::resetAll(std::function<void()> completion) {
    onQueue([=](const std::shared_ptr<TailscaleService>& self) {
        static_cast<void>(self->runner.runShell(self->tailscaleBin + " serve reset"));
        static_cast<void>(self->runner.runShell(self->tailscaleBin + " funnel reset"));
        self->mainQueue.post([=] {
            self->managedServers.killAllManagedServers();
            self->refresh();
            completion();
        });
    });
}

} // namespace brevane
