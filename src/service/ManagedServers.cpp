// SPDX-License-Identifier: MIT
#include "ManagedServers.h"

#include "EntryPorts.h"
#include "Path.h"

#include <limits>
#include <string_view>
#include <utility>

namespace brevane {

namespace {

bool isTcpPort(std::int64_t port) {
    return port >= 0 && port <= std::numeric_limits<std::uint16_t>::max();
}

} // namespace

ManagedServers::ManagedServers(ManagedServerRecord& record, ServerPool& pool,
                               Published<InfoMap>& managedServerInfo)
    : record_(record), pool_(pool), managedServerInfo_(managedServerInfo) {}

ManagedServers::~ManagedServers() {
    for (const auto& [port, server] : httpServers_)
        stop(*server);
}

void ManagedServers::loadPersistedManagedServers(const ManagedServerRecord::Entries& recorded) {
    InfoMap infos = managedServerInfo_.get();
    for (const auto& [port, entry] : recorded)
        if (infos.emplace(port, entry.info).second) nodes_[port] = entry.node;
    managedServerInfo_.set(std::move(infos));
}

void ManagedServers::registerServer(std::shared_ptr<FileHTTPServer> server,
                                    ManagedServerRecord::Entry entry) {
    const std::int64_t port = server->port;
    httpServers_.insert_or_assign(port, std::move(server));
    nodes_[port] = std::move(entry.node);
    unconfirmed_.insert(port);
    InfoMap infos = managedServerInfo_.get();
    infos.insert_or_assign(port, std::move(entry.info));
    managedServerInfo_.set(std::move(infos));
}

void ManagedServers::forget(std::int64_t port, const std::string& node) {
    stopAndRemove(port);
    if (isOfAnotherNode(port, node)) return;
    InfoMap infos = managedServerInfo_.get();
    if (auto found = infos.extract(port)) remember(port, std::move(found.mapped()));
    managedServerInfo_.set(std::move(infos));
    persistManagedServers({port});
}

void ManagedServers::killAllManagedServers(const std::string& node) {
    for (const auto& [port, server] : httpServers_)
        stop(*server);
    httpServers_.clear();
    InfoMap kept;
    std::vector<std::int64_t> removed;
    for (const auto& [port, info] : managedServerInfo_.get()) {
        if (isOfAnotherNode(port, node)) {
            kept.emplace(port, info);
        } else {
            remember(port, info);
            removed.push_back(port);
        }
    }
    managedServerInfo_.set(std::move(kept));
    persistManagedServers(std::move(removed));
}

void ManagedServers::persistManagedServers(std::vector<std::int64_t> removed) {
    ManagedServerRecord::Entries entries;
    for (const auto& [port, info] : managedServerInfo_.get())
        entries[port] = {.info = info, .node = nodes_[port]};
    record_.change(std::move(entries), std::move(removed));
}

void ManagedServers::restoreManagedServersIfNeeded(const std::vector<ServeEntry>& entries,
                                                   const std::string& node) {
    referenced_.clear();
    for (const ServeEntry& entry : entries)
        if (const auto port = proxiedPort(entry); port && isTcpPort(*port))
            referenced_.insert(*port);
    if (!node.empty()) reconcile(node);
}

void ManagedServers::reconcile(const std::string& node) {
    InfoMap infos = managedServerInfo_.get();
    std::vector<std::int64_t> removed;
    bool hasChanged = false;
    for (auto& [port, entry] : std::exchange(forgotten_, {})) {
        if (entry.node.empty() || entry.node == node) continue;
        if (!infos.emplace(port, std::move(entry.info)).second) continue;
        nodes_[port] = std::move(entry.node);
        hasChanged = true;
    }
    for (auto each = infos.begin(); each != infos.end();) {
        const auto& [port, info] = *each;
        std::string& made = nodes_[port];
        if (referenced_.contains(port)) {
            // The account may have been switched before the share was created, unnoticed until this
            // refresh.
            if (unconfirmed_.erase(port) != 0 || made.empty())
                hasChanged = std::exchange(made, node) != node || hasChanged;
            ++each;
            continue;
        }
        stopAndRemove(port);
        if (isOfAnotherNode(port, node)) {
            ++each;
            continue;
        }
        removed.push_back(port);
        remember(port, info);
        each = infos.erase(each);
    }
    if (removed.empty() && !hasChanged) return;
    if (infos != managedServerInfo_.get()) managedServerInfo_.set(std::move(infos));
    persistManagedServers(std::move(removed));
}

bool ManagedServers::startMissingServers() {
    bool areAllRunning = true;
    for (const auto& [port, info] : managedServerInfo_.get()) {
        if (!referenced_.contains(port)) continue;
        const auto running = httpServers_.find(port);
        if (running != httpServers_.end() && running->second->isRunning) continue;

        auto server = std::make_shared<FileHTTPServer>(rootFolder(info), pool_);
        if (server->startListener(static_cast<std::uint16_t>(port)))
            httpServers_.insert_or_assign(port, std::move(server));
        else
            areAllRunning = false;
    }
    return areAllRunning;
}

bool ManagedServers::isOfAnotherNode(std::int64_t port, const std::string& node) const {
    const auto made = nodes_.find(port);
    return made != nodes_.end() && !made->second.empty() && !node.empty() && made->second != node;
}

void ManagedServers::remember(std::int64_t port, ManagedServerInfo info) {
    unconfirmed_.erase(port);
    forgotten_[port] = {.info = std::move(info), .node = std::exchange(nodes_[port], {})};
    nodes_.erase(port);
}

void ManagedServers::stopAndRemove(std::int64_t port) {
    const auto server = httpServers_.find(port);
    if (server == httpServers_.end()) return;
    stop(*server->second);
    httpServers_.erase(server);
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
