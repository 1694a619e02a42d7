// SPDX-License-Identifier: MIT
#include "EntryExtraction.h"

#include <algorithm>
#include <utility>

namespace brevane {

namespace {

using HandlerType = ServeEntry::HandlerType;

bool isFunnelled(const std::optional<JsonMap<bool>>& allowFunnel, std::string_view hostPort) {
    if (!allowFunnel) return false;
    const auto found = allowFunnel->find(hostPort);
    return found != allowFunnel->end() && found->second;
}

// A handler of an unknown kind is still listed, as a proxy without a target.
std::pair<HandlerType, std::string> classified(const HTTPHandlerJSON& handler) {
    if (handler.Proxy) return {HandlerType::proxy, *handler.Proxy};
    if (handler.Path) return {HandlerType::filePath, *handler.Path};
    if (handler.Text) return {HandlerType::text, *handler.Text};
    return {HandlerType::proxy, ""};
}

void appendWebHandlers(std::vector<ServeEntry>& entries,
                       const std::optional<JsonMap<WebServerConfigJSON>>& web,
                       const std::optional<JsonMap<bool>>& allowFunnel, bool isBackground) {
    if (!web) return;
    for (const auto& [hostPort, server] : *web) {
        if (!server.Handlers) continue;
        for (const auto& [mountPath, handler] : *server.Handlers) {
            auto [type, detail] = classified(handler);
            entries.push_back({.id = makeEntryId(),
                               .isFunnel = isFunnelled(allowFunnel, hostPort),
                               .hostPort = hostPort,
                               .urlPath = mountPath,
                               .handlerType = type,
                               .handlerDetail = std::move(detail),
                               .isBackground = isBackground});
        }
    }
}

void appendTcpForwards(std::vector<ServeEntry>& entries, const ServeConfigJSON& config,
                       std::string_view dnsName) {
    if (!config.TCP) return;
    for (const auto& [port, handler] : *config.TCP) {
        if (!handler.TCPForward) continue;
        std::string hostPort = std::string(dnsName) + ":" + port;
        const bool isFunnel = isFunnelled(config.AllowFunnel, hostPort);
        entries.push_back({.id = makeEntryId(),
                           .isFunnel = isFunnel,
                           .hostPort = std::move(hostPort),
                           .urlPath = "/",
                           .handlerType = HandlerType::tcp,
                           .handlerDetail = *handler.TCPForward,
                           .isBackground = true});
    }
}

} // namespace

std::vector<ServeEntry> extractEntries(const ServeConfigJSON& config, std::string_view dnsName) {
    std::vector<ServeEntry> entries;
    appendWebHandlers(entries, config.Web, config.AllowFunnel, true);
    appendTcpForwards(entries, config, dnsName);
    if (config.Foreground)
        for (const auto& [session, foreground] : *config.Foreground)
            appendWebHandlers(entries, foreground.Web, foreground.AllowFunnel, false);
    std::stable_partition(entries.begin(), entries.end(),
                          [](const ServeEntry& entry) { return !entry.isFunnel; });
    return entries;
}

} // namespace brevane
