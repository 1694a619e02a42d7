// SPDX-License-Identifier: MIT
#pragma once

#include "Mutex.h"

#include <memory>

namespace brevane {

class ServerThreads;

/// Owns the threads that all file servers share, which are started with the first server. Must
/// outlive every server.
class ServerPool {
public:
    ServerPool();
    /// Closes all connections and ends the threads. Waits at most half a second for those that hang
    /// in a file system.
    ~ServerPool();
    ServerPool(const ServerPool&) = delete;
    ServerPool& operator=(const ServerPool&) = delete;

private:
    friend class FileHTTPServer;

    // Throws the operating system's error if no thread or descriptor is left. Any thread.
    [[nodiscard]] ServerThreads& start();

    Mutex mutex_;
    std::shared_ptr<ServerThreads> threads_ GUARDED_BY(mutex_); // shared with the threads
};

} // namespace brevane
