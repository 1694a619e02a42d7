// SPDX-License-Identifier: MIT
#pragma once

#include "Announcement.h"
#include "CommandRunner.h"
#include "Configuration.h"
#include "MainQueue.h"
#include "ManagedServerRecord.h"
#include "ManagedServers.h"
#include "Preferences.h"
#include "Published.h"
#include "SerialQueue.h"
#include "ServeEntry.h"
#include "ServeMode.h"
#include "SourceType.h"

#include <array>
#include <atomic>
#include <chrono>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace brevane {

/// The application's model: runs every tailscale command, publishes the results and makes the
/// changes that the user asks for. Main thread only unless stated otherwise; commands run on a
/// serial background queue, one at a time, in the order of the calls.
class TailscaleService : public std::enable_shared_from_this<TailscaleService> {
public:
    /// Called once on the main thread with whether the command's exit status was 0, and its output.
    /// Never called if the service is destroyed before the command starts.
    using Completion = std::function<void(bool success, const std::string& output)>;

    /// Everything passed by reference must outlive the service; destroy the queue before the rest,
    /// since its running task keeps the service alive. Loads the record of managed servers; blocks
    /// for at most 200 ms, and takes the record from a slower disk later. Runs no command and
    /// starts no server.
    [[nodiscard]] static std::shared_ptr<TailscaleService>
    create(Configuration configuration, MainQueue& mainQueue, SerialQueue& queue,
           Preferences& preferences, ServerPool& pool);
    /// Stops every file server and blocks until the record is written. May run on the background
    /// queue's own thread, where a task can hold the last reference.
    ~TailscaleService();

    TailscaleService(const TailscaleService&) = delete;
    TailscaleService& operator=(const TailscaleService&) = delete;

    Published<std::string> dnsName;     ///< full DNS name of this machine, without trailing dot
    Published<std::string> tailscaleIP; ///< first tailnet address of this machine
    Published<bool> isConnected;        ///< the state of the daemon is "Running"
    Published<std::string> hostname;    ///< short host name of this machine
    Published<std::vector<ServeEntry>> entries; ///< every share, serves before funnels
    Published<bool> isLoading;                  ///< a refresh or an add is under way
    Published<std::optional<std::string>> lastError;
    Published<std::optional<std::string>> lastOutput; ///< of the last add
    Published<ManagedServers::InfoMap> managedServerInfo;

    /// Announced before any of the properties above changes.
    Announcement objectWillChange;

    /// Reads the daemon's state and shares. Returns at once; calls are not coalesced.
    void refresh();

    /// Creates a share and, on success, refreshes. A file or folder gets a file server of its own,
    /// which is kept only if the share was created. It is recorded first, so that the daemon leads
    /// to no port that is not recorded, unless the disk fails or takes longer than ten seconds. A
    /// failure is published as `lastError`.
    void add(ServeMode mode, SourceType sourceType, const std::string& source,
             const std::string& urlPath, bool background, Completion completion);

    /// Stops every share on the entry's port, then refreshes.
    void stopEntry(const ServeEntry& entry, Completion completion);

    /// Stops all serves, then refreshes; on success stops every file server and removes this node's
    /// from the record.
    void resetServes(Completion completion);

    /// The same for all funnels. Stops every file server, including those behind serves.
    void resetFunnels(Completion completion);

    /// Stops everything, even if the commands fail, then refreshes.
    void resetAll(std::function<void()> completion);

    /// Ends the running command and prevents later ones, for quitting. Any thread.
    void interruptCommands();

    /// Blocks until pending changes to the record are written or writing has failed, at most for
    /// `limit`. Returns false if `limit` passes first. Any thread.
    bool waitForRecord(std::chrono::milliseconds limit);

private:
    TailscaleService(Configuration configuration, MainQueue& mainQueue, SerialQueue& queue,
                     Preferences& preferences, ServerPool& pool);
    void loadPersistedManagedServers();
    void parseStatus(const std::string& text);
    void parseServeConfig(const std::string& text);
    [[nodiscard]] std::string runningNode() const;
    void startMissingServers();
    void saveRecord();
    void sayUnsaved(const std::string& reason);
    void onQueue(std::function<void(const std::shared_ptr<TailscaleService>&)> work);
    /// What a file or folder share serves, and under which path.
    struct ServedSource {
        ManagedServerRecord::Entry entry;
        std::string mountPath;
    };
    [[nodiscard]] static ServedSource servedSource(SourceType sourceType, const std::string& source,
                                                   const std::string& urlPath,
                                                   const std::string& node);
    CommandRunner::Result addThroughServer(ServeMode mode, const ServedSource& source,
                                           bool background);
    [[nodiscard]] std::expected<std::shared_ptr<FileHTTPServer>, std::string>
    startRecordedServer(const ManagedServerRecord::Entry& entry);
    void finishAdd(CommandRunner::Result result, std::string error, const Completion& completion);
    void reset(const std::string& subcommand, Completion completion);

    std::string tailscaleBin_;
    MainQueue& mainQueue_;
    SerialQueue& queue_;
    ServerPool& pool_;
    std::array<Subscription, 9> forwarding_;
    CommandRunner runner_;
    std::atomic<bool> isInterrupted_ = false;
    ManagedServerRecord record_;
    ManagedServers managedServers_;
    bool isRetryPending_ = false;
    std::chrono::seconds retryDelay_; ///< before the next attempt to start missing servers
};

} // namespace brevane
