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

/// The file servers behind file and folder shares, and what of them is recorded. A share belongs to
/// the node, named by its DNS name, that it was made under: another account's shares are kept, and
/// not served, while nothing leads to them. Main thread only, but for the destructor and `stop`.
class ManagedServers {
public:
    using InfoMap = std::map<std::int64_t, ManagedServerInfo>; ///< by local port

    ManagedServers(ManagedServerRecord& record, ServerPool& pool,
                   Published<InfoMap>& managedServerInfo);
    /// Stops every server and leaves the record as it is, so that they come back at the next start.
    ~ManagedServers();
    ManagedServers(const ManagedServers&) = delete;
    ManagedServers& operator=(const ManagedServers&) = delete;

    /// Takes in what the record holds, save for ports that are managed already. Starts no server.
    void loadPersistedManagedServers(const ManagedServerRecord::Entries& recorded);

    /// Takes in a server whose share has just been made, and which is in the record already.
    void registerServer(std::shared_ptr<FileHTTPServer> server, ManagedServerRecord::Entry entry);

    /// Stops the server on this port, if there is one, and forgets the port, unless it is another
    /// node's. The record is written whether or not there was anything to forget. `node` is this
    /// node's DNS name, empty if not known.
    void forget(std::int64_t port, const std::string& node);

    /// Stops every server and forgets all of them that are not another node's.
    void killAllManagedServers(const std::string& node);

    /// Where `node` is not empty, the daemon runs under that name, and what no proxy among
    /// `entries` leads to is stopped, and forgotten if it was made under it. Then starts the
    /// servers that are missing.
    void restoreManagedServersIfNeeded(const std::vector<ServeEntry>& entries,
                                       const std::string& node);

    /// Starts the missing servers of the ports that the last restore saw in use. Returns false
    /// where one could not be started.
    bool startMissingServers();

    /// Stops one server: no request is accepted any more, responses under way finish.
    static void stop(FileHTTPServer& server);

    /// The folder that a server for `info` has as its root.
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
    std::map<std::int64_t, std::string> nodes_; ///< the node of each managed port, if it is known
    std::set<std::int64_t> referenced_;  ///< the ports that proxies led to at the last restore
    std::set<std::int64_t> unconfirmed_; ///< made under a node that no refresh has shown since
    /// Forgotten since the last restore that knew the node: it may not have been the one that all
    /// believed.
    ManagedServerRecord::Entries forgotten_;
};

} // namespace brevane
