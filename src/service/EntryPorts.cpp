// SPDX-License-Identifier: MIT
#include "EntryPorts.h"

#include "UrlPort.h"

namespace brevane {

std::string stopPort(const ServeEntry& entry) {
    const std::string& hostPort = entry.hostPort;
    const auto end = hostPort.find_last_not_of(':');
    if (end == std::string::npos) return "443";
    const auto colon = hostPort.find_last_of(':', end);
    const auto start = colon == std::string::npos ? 0 : colon + 1;
    return hostPort.substr(start, end + 1 - start);
}

std::optional<std::int64_t> proxiedPort(const ServeEntry& entry) {
    if (entry.handlerType != ServeEntry::HandlerType::proxy) return std::nullopt;
    return explicitPort(entry.handlerDetail);
}

} // namespace brevane
