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
    std::string path; ///< the file or folder as the user entered it, without white space around it
    bool isDirectory; ///< a folder share; else a file share, served out of the file's folder

    bool operator==(const ManagedServerInfo&) const = default;
};

/// The record of managed servers in the user's preferences. It is read and written on a thread of
/// its own, in the order of the calls, so that a slow disk holds up nobody who does not wait for
/// it. What could not be written stays to be written; a record that could not be read is read again
/// before anything is written. Its members may be called from any thread.
class ManagedServerRecord {
public:
    struct Entry {
        ManagedServerInfo info;
        std::string node; ///< the DNS name that the share was made under; empty if unknown

        bool operator==(const Entry&) const = default;
    };
    using Entries = std::map<std::int64_t, Entry>; ///< by local port

    static constexpr const char* managedServersKey = "TailscaleManagedServers";
    static constexpr const char* managedServerNodesKey = "TailscaleManagedServerNodes";

    /// Reads nothing yet. The preferences are used on the record's thread only and outlive it.
    explicit ManagedServerRecord(Preferences& preferences);
    /// Writes what is still to be written and waits for that, however long it takes.
    ~ManagedServerRecord();
    ManagedServerRecord(const ManagedServerRecord&) = delete;
    ManagedServerRecord& operator=(const ManagedServerRecord&) = delete;

    /// Reads the record and calls `then`, once, on the record's thread, with what it holds. Where
    /// it cannot be read, that is after a later try.
    void read(std::function<void(const Entries&)> then);

    /// Enters a share that is about to be made. Waits until it is on disk or could not be written,
    /// but no longer than `limit`. Returns false, with nothing entered, where the port is another
    /// share's.
    [[nodiscard]] bool claim(std::int64_t port, const Entry& entry, std::chrono::seconds limit);

    /// Enters the ports of `entries`, takes `removed` out and writes.
    void change(Entries entries, std::vector<std::int64_t> removed);

    /// Tries again what could not be done before, and calls `then` on the record's thread with the
    /// error of reading or writing, if there is one still.
    void save(std::function<void(std::error_code)> then);

    /// Writes what is still to be written, and waits until that and all that was asked for before
    /// has been done or has failed, but no longer than `limit`. Returns whether it was.
    bool wait(std::chrono::milliseconds limit);

private:
    std::error_code readAgain();
    std::error_code write();

    Preferences& preferences_;
    // What follows is used on the thread only.
    std::function<void(const Entries&)> then_;
    bool isRead_ = false;
    bool hasAnswered_ = false; ///< `then_` has been called
    bool isWritten_ = true;
    Entries entries_;
    std::set<std::string> obsolete_; ///< the names of entries to be taken out of the preferences
    SerialQueue thread_{"record"};   ///< ends before what it uses
};

} // namespace brevane
