// SPDX-License-Identifier: MIT
#pragma once

#include "Preferences.h"
#include "SerialQueue.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <system_error>
#include <vector>

namespace brevane {

/// What a managed port serves.
struct ManagedServerInfo {
    std::string path; ///< the file or folder as entered, without white space around it
    bool isDirectory; ///< true for a folder; a file is served from its parent folder

    bool operator==(const ManagedServerInfo&) const = default;
};

/// The record of managed servers in the user's preferences. It is read and written on its own
/// thread, in the order of the calls, so that a slow disk delays only callers that wait for it. A
/// write that failed is repeated with the next one; a read that failed is repeated before anything
/// is written. Members may be called from any thread.
class ManagedServerRecord {
public:
    struct Entry {
        ManagedServerInfo info;
        std::string node; ///< the DNS name that the share was created under; empty if unknown

        bool operator==(const Entry&) const = default;
    };
    using Entries = std::map<std::int64_t, Entry>; ///< by local port

    static constexpr const char* managedServersKey = "TailscaleManagedServers";
    static constexpr const char* managedServerNodesKey = "TailscaleManagedServerNodes";

    /// Does not read yet. `preferences` is used on the record's thread only and must outlive it.
    explicit ManagedServerRecord(Preferences& preferences);
    /// Writes pending changes; blocks until that is done, without a time limit.
    ~ManagedServerRecord();
    ManagedServerRecord(const ManagedServerRecord&) = delete;
    ManagedServerRecord& operator=(const ManagedServerRecord&) = delete;

    /// Reads the record and calls `then` with its entries on the record's thread, after a failure
    /// only once a later attempt succeeds. If the record is empty, it is read again later, and
    /// `then` is called a second time if it holds entries by then.
    void read(std::function<void(const Entries&)> then);

    /// Adds a share that is about to be created. Blocks until it is on disk or writing has failed,
    /// at most for `limit`. Returns false, and adds nothing, if the port belongs to another share;
    /// true if `limit` passes first.
    [[nodiscard]] bool claim(std::int64_t port, const Entry& entry, std::chrono::seconds limit);

    /// Removes the ports in `removed`, adds or replaces those in `entries`, and writes.
    void change(Entries entries, std::vector<std::int64_t> removed);

    /// Retries failed reads and writes, and calls `then` on the record's thread with the error that
    /// remains, if any.
    void save(std::function<void(std::error_code)> then);

    /// Writes pending changes. Blocks until that and all earlier calls have succeeded or failed, at
    /// most for `limit`. Returns false if `limit` passes first.
    bool wait(std::chrono::milliseconds limit);

private:
    std::error_code readAgain();
    std::error_code write();

    Preferences& preferences_;
    // The members below are used on `thread_` only.
    std::function<void(const Entries&)> then_;
    bool isRead_ = false;
    bool hasAnswered_ = false; ///< `then_` has been called
    bool isWritten_ = true;
    Entries entries_;
    std::set<std::string> obsolete_; ///< names of entries to remove from the preferences
    SerialQueue thread_{"record"};   ///< destroyed first, since it uses the members above
};

} // namespace brevane
