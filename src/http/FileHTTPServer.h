// SPDX-License-Identifier: MIT
#pragma once

#include "ServerPool.h"
#include "TcpListener.h"

#include <atomic>
#include <cstdint>
#include <expected>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace brevane {

struct ServedFolder;

/// A small HTTP/1.1 server (RFC 9112) for one folder on one local port: GET and HEAD, one request
/// per connection. It has no stop(): its owner sets `isRunning` to false, cancels the listener and
/// destroys it.
class FileHTTPServer {
public:
    /// Makes `directory` absolute and resolves "." and "..". Does not access the disk or listen
    /// yet.
    FileHTTPServer(std::string_view directory, ServerPool& pool);
    /// Closes the socket. Connections that are still reading a request end, responses in progress
    /// finish.
    ~FileHTTPServer();
    FileHTTPServer(const FileHTTPServer&) = delete;
    FileHTTPServer& operator=(const FileHTTPServer&) = delete;

    /// Listens on `requestedPort` on all local addresses, 0 for a free port picked by the system,
    /// and returns the port. Connections are accepted once this returns. Returns the operating
    /// system's error if the port is not available or the pool's threads could not be started.
    [[nodiscard]] std::expected<std::int64_t, std::error_code>
    startListener(std::uint16_t requestedPort);

    std::int64_t port = 0;               ///< 0 until there is one
    std::atomic<bool> isRunning = false; ///< true while listening
    std::unique_ptr<TcpListener>
        listener; ///< null until `startListener`; must not outlive the server

private:
    std::string root_;
    ServerPool& pool_;
    std::shared_ptr<ServedFolder> folder_; // null until `startListener`
};

} // namespace brevane
