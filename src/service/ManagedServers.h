// SPDX-License-Identifier: MIT
#pragma once

#include "FileHTTPServer.h"
#include "ManagedServerRecord.h"
#include "Published.h"
#include "ServeEntry.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace brevane {

/// The file servers behind file and folder shares, and their record. A share belongs to the node,
/// identified by its DNS name, that it was created under: shares of another account's node are
/// kept, but are not served while no proxy leads to them. Main thread only, except for the
/// destructor and `stop`.
class ManagedServers {
public:
    using InfoMap = std::map<std::int64_t, ManagedServerInfo>; ///< by local port

    ManagedServers(ManagedServerRecord& record, ServerPool& pool,
                   Published<InfoMap>& managedServerInfo);
    /// Stops every server and leaves the record as it is, so that the next start of the program
    /// brings them back.
    ~ManagedServers();
    ManagedServers(const ManagedServers&) = delete;
    ManagedServers& operator=(const ManagedServers&) = delete;

    /// Adds the recorded shares, except for ports that are managed already. Starts no server.
    void loadPersistedManagedServers(const ManagedServerRecord::Entries& recorded);

    /// Adds a server whose share has just been created and is in the record already.
    void registerServer(std::shared_ptr<FileHTTPServer> server, ManagedServerRecord::Entry entry);

    /// Stops the server on this port, if there is one, and removes the port from the record, unless
    /// it belongs to another node. The record is written even if there was nothing to remove.
    /// `node` is this node's DNS name, empty if unknown.
    void forget(std::int64_t port, const std::string& node);

    /// Stops every server and removes all from the record that do not belong to another node.
    void killAllManagedServers(const std::string& node);

    /// Notes the ports that proxies among `entries` lead to. If `node`, the name that the daemon
    /// runs under, is not empty, also stops the servers that no proxy leads to, removes from the
    /// record those that do not belong to another node, and adds entries back that were removed but
    /// prove to be another node's. Starts no server.
    void restoreManagedServersIfNeeded(const std::vector<ServeEntry>& entries,
                                       const std::string& node);

    /// Starts the missing servers of the ports that proxies led to at the last restore. Returns
    /// false if one could not be started.
    bool startMissingServers();

    /// Stops one server: no connection is accepted after this returns, responses in progress
    /// finish.
    static void stop(FileHTTPServer& server);

    /// The root folder of a server for `info`.
    [[nodiscard]] static std::string rootFolder(const ManagedServerInfo& info);

private:
    void reconcile(const std::string& node);
    void persistManagedServers(std::vector<std::int64_t> removed);
    [[nodiscard]] bool isOfAnotherNode(std::int64_t port, const std::string& node) const;
    void remember(std::int64_t port, ManagedServerInfo info);
    void stopAndRemove(std::int64_t port);

    ManagedServerRecord& record_;
    ServerPool& pool_;
    Published<InfoMap>& managedServerInfo_;
    std::map<std::int64_t, std::shared_ptr<FileHTTPServer>> httpServers_;
    std::map<std::int64_t, std::string> nodes_; ///< the node of each managed port, if known
    std::set<std::int64_t> referenced_;  ///< the ports that proxies led to at the last restore
    std::set<std::int64_t> unconfirmed_; ///< ports whose node no refresh has confirmed yet
    /// Removed since the last restore with a known node, since the node assumed until then may have
    /// been wrong.
    ManagedServerRecord::Entries forgotten_;
};

} // namespace brevane
