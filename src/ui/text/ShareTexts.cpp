// SPDX-License-Identifier: MIT
#include "ShareTexts.h"

#include "EntryPorts.h"

namespace brevane {

std::string displayURL(const ServeEntry& entry) {
    constexpr std::string_view defaultPort = ":443";
    std::string_view host = entry.hostPort;
    if (host.ends_with(defaultPort)) host.remove_suffix(defaultPort.size());
    std::string url = "https://";
    url.append(host);
    if (entry.urlPath != "/") url += entry.urlPath;
    return url;
}

std::optional<ManagedServerInfo> managedInfo(const ServeEntry& entry,
                                             const ManagedServers::InfoMap& servers) {
    const auto port = proxiedPort(entry);
    if (!port) return std::nullopt;
    const auto found = servers.find(*port);
    if (found == servers.end()) return std::nullopt;
    return found->second;
}

ShareDetail shareDetail(const ServeEntry& entry, const std::optional<ManagedServerInfo>& managed) {
    if (managed)
        return {managed->isDirectory ? "folder" : "doc", managed->isDirectory ? "folder" : "file",
                managed->path};
    switch (entry.handlerType) {
    case ServeEntry::HandlerType::filePath:
        return {"folder", "path", entry.handlerDetail};
    case ServeEntry::HandlerType::text:
        return {"text.quote", "text", entry.handlerDetail};
    case ServeEntry::HandlerType::tcp:
        return {"arrow.left.arrow.right", "TCP forward", entry.handlerDetail};
    case ServeEntry::HandlerType::proxy:
        break;
    }
    return {"network", "proxy", entry.handlerDetail};
}

std::string spokenShare(const ServeEntry& entry, const std::optional<ManagedServerInfo>& managed) {
    const ShareDetail detail = shareDetail(entry, managed);
    std::string spoken = entry.isFunnel ? "Funnel, " : "Serve, ";
    spoken += displayURL(entry) + ", ";
    spoken.append(detail.kind);
    if (!detail.text.empty()) spoken += " " + detail.text;
    return spoken;
}

std::string stopTitle(const ServeEntry& entry) {
    return "Stop share on port " + stopPort(entry);
}

std::string stopMessage(const ServeEntry& entry) {
    return "This will stop all handlers on port " + stopPort(entry) +
           ". All paths served on this port will become unavailable.";
}

} // namespace brevane
