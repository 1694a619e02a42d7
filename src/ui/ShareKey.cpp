// SPDX-License-Identifier: MIT
#include "ShareKey.h"

namespace brevane {

namespace {

bool isAlike(const ServeEntry& share, const std::string& hostPort, const std::string& urlPath,
             ServeEntry::HandlerType handlerType) {
    return share.handlerType == handlerType && share.urlPath == urlPath &&
           share.hostPort == hostPort;
}

} // namespace

ShareKey shareKey(const std::vector<ServeEntry>& shares, std::size_t index) {
    const ServeEntry& share = shares[index];
    ShareKey key{share.hostPort, share.urlPath, share.handlerType, 0};
    for (std::size_t before = 0; before < index; ++before)
        if (isAlike(shares[before], share.hostPort, share.urlPath, share.handlerType))
            ++key.occurrence;
    return key;
}

std::optional<std::size_t> indexOf(const ShareKey& key, const std::vector<ServeEntry>& shares) {
    std::size_t before = 0;
    for (std::size_t index = 0; index < shares.size(); ++index) {
        if (!isAlike(shares[index], key.hostPort, key.urlPath, key.handlerType)) continue;
        if (before++ == key.occurrence) return index;
    }
    return std::nullopt;
}

} // namespace brevane
