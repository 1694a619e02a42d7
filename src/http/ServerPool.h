// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>

namespace brevane {

class ServerThreads;

/// The threads that all file servers share, from the first server's start on. Outlives every
/// server.
class ServerPool {
public:
    ServerPool();
    /// Closes what is still open and joins the threads.
    ~ServerPool();
    ServerPool(const ServerPool&) = delete;
    ServerPool& operator=(const ServerPool&) = delete;

private:
    friend class FileHTTPServer;

    // Throws the operating system's error where it has no thread or descriptor left. Any thread.
    [[nodiscard]] ServerThreads& start();

    std::mutex mutex;
    std::unique_ptr<ServerThreads> threads;
};

} // namespace brevane
