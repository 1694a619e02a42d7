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

/// The one model object: it runs every tailscale command, publishes what the commands say and
/// performs the changes that the user asks for. All members are for the main thread; commands run
/// on a serial background queue, one at a time, in the order in which they were asked for.
class TailscaleService : public std::enable_shared_from_this<TailscaleService> {
public:
    /// Called once on the main thread: whether the command's exit status was 0, and its output.
    /// Never called if the service has gone by the time its turn comes.
    using Completion = std::function<void(bool success, const std::string& output)>;

    /// What is passed by reference outlives the service; the queue is to be destroyed before the
    /// others, since its running task keeps the service alive. Loads the record of managed servers,
    /// for which it waits a moment and no longer: from a slow disk it comes when it comes. Runs no
    /// command and starts no server.
    [[nodiscard]] static std::shared_ptr<TailscaleService>
    create(Configuration configuration, MainQueue& mainQueue, SerialQueue& queue,
           Preferences& preferences, ServerPool& pool);
    /// Stops every file server and waits until the record is on disk. May run on the background
    /// queue's own thread, where a task can hold the last reference.
    ~TailscaleService();

    TailscaleService(const TailscaleService&) = delete;
    TailscaleService& operator=(const TailscaleService&) = delete;

    Published<std::string> dnsName;     ///< full DNS name of this machine, without trailing dot
    Published<std::string> tailscaleIP; ///< first tailnet address of this machine
    Published<bool> isConnected;        ///< the daemon says "Running"
    Published<std::string> hostname;    ///< short host name of this machine
    Published<std::vector<ServeEntry>> entries; ///< every share, serves before funnels
    Published<bool> isLoading;                  ///< a refresh or an add is under way
    Published<std::optional<std::string>> lastError;
    Published<std::optional<std::string>> lastOutput; ///< of the last add
    Published<ManagedServers::InfoMap> managedServerInfo;

    /// Announces before any of the properties above changes.
    Announcement objectWillChange;

    /// Reads the daemon's state and shares anew. Returns at once; two calls are two full cycles.
    void refresh();

    /// Creates a share, then refreshes. A file or folder gets a file server of its own, which is
    /// kept only if the share was made. It is recorded before that, so that at no instant the
    /// daemon leads to a port that nobody remembers. A failure is published as `lastError`.
    void add(ServeMode mode, SourceType sourceType, const std::string& source,
             const std::string& urlPath, bool background, Completion completion);

    /// Stops every share on the entry's port, then refreshes.
    void stopEntry(const ServeEntry& entry, Completion completion);

    /// Stops all serves, then refreshes; on success every file server is stopped and forgotten.
    void resetServes(Completion completion);

    /// The same with all funnels. Every file server goes, those behind serves included.
    void resetFunnels(Completion completion);

    /// Stops everything, whatever the commands say, then refreshes.
    void resetAll(std::function<void()> completion);

    /// Ends the command that runs and every later one, for quitting. Any thread.
    void interruptCommands();

    /// Waits until what was to be recorded is on disk or could not be written, but no longer than
    /// `limit`. Returns whether it was. Any thread.
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
    /// What a file or folder share serves and under which path.
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
    std::chrono::seconds retryDelay_; ///< until the next try to start a server that is missing
};

} // namespace brevane
