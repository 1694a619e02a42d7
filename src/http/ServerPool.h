// SPDX-License-Identifier: MIT
#pragma once

#include "Mutex.h"

#include <memory>

namespace brevane {

class ServerThreads;

/// Owns the threads that all file servers share, from the first server's start on. Outlives every
/// server.
class ServerPool {
public:
    ServerPool();
    /// Closes what is still open and ends the threads. One that hangs in a file system is left to
    /// that, after half a second.
    ~ServerPool();
    ServerPool(const ServerPool&) = delete;
    ServerPool& operator=(const ServerPool&) = delete;

private:
    friend class FileHTTPServer;

    // Throws the operating system's error where it has no thread or descriptor left. Any thread.
    [[nodiscard]] ServerThreads& start();

    Mutex mutex_;
    std::shared_ptr<ServerThreads> threads_ GUARDED_BY(mutex_); // those that hang hold it too
};

} // namespace brevane
