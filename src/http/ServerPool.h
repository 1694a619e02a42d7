// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace brevane {

class ServerThreads;

/// The threads that all file servers share. Outlives every server.
class ServerPool {
public:
    /// Starts as many threads as there are processors.
    ServerPool();
    /// Closes what is still open and joins the threads.
    ~ServerPool();
    ServerPool(const ServerPool&) = delete;
    ServerPool& operator=(const ServerPool&) = delete;

private:
    friend class FileHTTPServer;
    std::unique_ptr<ServerThreads> threads;
};

} // namespace brevane
