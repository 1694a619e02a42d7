// SPDX-License-Identifier: MIT
#include "ManagedServers.h"

#include "EntryPorts.h"
#include "Path.h"

#include <charconv>
#include <limits>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace brevane {

namespace {

// A signed decimal number and nothing else.
std::optional<std::int64_t> parsePort(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || rest != end) return std::nullopt;
    return number;
}

bool isTcpPort(std::int64_t port) {
    return port >= 0 && port <= std::numeric_limits<std::uint16_t>::max();
}

} // namespace

ManagedServers::ManagedServers(Preferences& store, ServerPool& threads, Published<InfoMap>& info)
    : preferences(store), pool(threads), managedServerInfo(info) {}

ManagedServers::~ManagedServers() {
    for (const auto& [port, server] : httpServers)
        stop(*server);
}

void ManagedServers::registerServer(std::shared_ptr<FileHTTPServer> server,
                                    ManagedServerInfo info) {
    const std::int64_t port = server->port;
    httpServers.insert_or_assign(port, std::move(server));
    InfoMap infos = managedServerInfo.get();
    infos.insert_or_assign(port, std::move(info));
    managedServerInfo.set(std::move(infos));
    persistManagedServers();
}

void ManagedServers::forget(std::int64_t port) {
    stopAndRemove(port);
    InfoMap infos = managedServerInfo.get();
    infos.erase(port);
    managedServerInfo.set(std::move(infos));
    persistManagedServers();
}

void ManagedServers::killAllManagedServers() {
    for (const auto& [port, server] : httpServers)
        stop(*server);
    httpServers.clear();
    managedServerInfo.set({});
    persistManagedServers();
}

void ManagedServers::persistManagedServers() {
    Preferences::Dictionary record;
    for (const auto& [port, info] : managedServerInfo.get())
        record[std::to_string(port)] = {{"path", info.path},
                                        {"type", info.isDirectory ? "directory" : "file"}};
    // The record is written again at the next change; there is nothing that the user could do.
    static_cast<void>(preferences.set(managedServersKey, record));
}

void ManagedServers::loadPersistedManagedServers() {
    const auto record = preferences.dictionary(managedServersKey);
    if (!record) return;

    InfoMap infos = managedServerInfo.get();
    for (const auto& [key, values] : *record) {
        const auto port = parsePort(key);
        const auto path = values.find("path");
        if (!port || path == values.end()) continue;
        const auto type = values.find("type");
        infos[*port] = {.path = path->second,
                        .isDirectory = type != values.end() && type->second == "directory"};
    }
    managedServerInfo.set(std::move(infos));
}

void ManagedServers::restoreManagedServersIfNeeded(const std::vector<ServeEntry>& entries) {
    forgetStalePorts(entries);
    startMissingServers();
}

void ManagedServers::forgetStalePorts(const std::vector<ServeEntry>& entries) {
    std::set<std::int64_t> referenced;
    for (const ServeEntry& entry : entries)
        if (const auto port = proxiedPort(entry); port && isTcpPort(*port))
            referenced.insert(*port);

    InfoMap kept;
    for (const auto& [port, info] : managedServerInfo.get()) {
        if (referenced.contains(port))
            kept.emplace(port, info);
        else
            stopAndRemove(port);
    }
    if (kept.size() == managedServerInfo->size()) return;
    managedServerInfo.set(std::move(kept));
    persistManagedServers();
}

void ManagedServers::startMissingServers() {
    for (const auto& [port, info] : managedServerInfo.get()) {
        const auto running = httpServers.find(port);
        if (running != httpServers.end() && running->second->isRunning) continue;

        auto server = std::make_shared<FileHTTPServer>(rootFolder(info), pool);
        if (server->startListener(static_cast<std::uint16_t>(port)))
            httpServers.insert_or_assign(port, std::move(server));
    }
}

void ManagedServers::stopAndRemove(std::int64_t port) {
    const auto server = httpServers.find(port);
    if (server == httpServers.end()) return;
    stop(*server->second);
    httpServers.erase(server);
}

void ManagedServers::stop(FileHTTPServer& server) {
    server.isRunning = false;
    if (server.listener) server.listener->cancel();
    server.listener.reset();
}

std::string ManagedServers::rootFolder(const ManagedServerInfo& info) {
    return std::string(info.isDirectory ? std::string_view(info.path) : parentFolder(info.path));
}

} // namespace brevane
