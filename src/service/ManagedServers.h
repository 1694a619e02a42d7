// SPDX-License-Identifier: MIT
#pragma once

#include "FileHTTPServer.h"
#include "Preferences.h"
#include "Published.h"
#include "ServeEntry.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace brevane {

/// What a managed port serves.
struct ManagedServerInfo {
    std::string path; ///< the file or folder as the user entered it, without white space around it
    bool isDirectory; ///< a folder share; else a file share, served out of the file's folder

    bool operator==(const ManagedServerInfo&) const = default;
};

/// The file servers behind file and folder shares, and the record of them that survives a restart.
/// Main thread only, but for the destructor and `stop`.
class ManagedServers {
public:
    using InfoMap = std::map<std::int64_t, ManagedServerInfo>; ///< by local port

    static constexpr const char* managedServersKey = "TailscaleManagedServers";

    ManagedServers(Preferences& preferences, ServerPool& pool,
                   Published<InfoMap>& managedServerInfo);
    /// Stops every server and leaves the record as it is, so that they come back at the next start.
    ~ManagedServers();

    /// Takes in a server whose share has just been made, and records it.
    void registerServer(std::shared_ptr<FileHTTPServer> server, ManagedServerInfo info);

    /// Stops the server on this port, if there is one, and forgets the port; the record is written
    /// whether or not there was anything to forget.
    void forget(std::int64_t port);

    /// Stops every server and forgets all of them.
    void killAllManagedServers();

    /// Writes the record from `managedServerInfo`.
    void persistManagedServers();

    /// Fills `managedServerInfo` from the record, which is ignored as a whole if it has another
    /// shape. Starts no server.
    void loadPersistedManagedServers();

    /// Forgets every port that no proxy among `entries` leads to any more, and starts the servers
    /// that are missing. One that cannot be started is tried again the next time.
    void restoreManagedServersIfNeeded(const std::vector<ServeEntry>& entries);

    /// Stops one server: no request is accepted any more, responses under way finish.
    static void stop(FileHTTPServer& server);

    /// The folder that a server for `info` has as its root.
    [[nodiscard]] static std::string rootFolder(const ManagedServerInfo& info);

private:
    void forgetStalePorts(const std::vector<ServeEntry>& entries);
    void startMissingServers();
    void stopAndRemove(std::int64_t port);

    Preferences& preferences;
    ServerPool& pool;
    Published<InfoMap>& managedServerInfo;
    std::map<std::int64_t, std::shared_ptr<FileHTTPServer>> httpServers;
};

} // namespace brevane
