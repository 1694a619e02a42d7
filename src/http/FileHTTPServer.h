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
/// per connection. It has no stop of its own: its owner clears `isRunning`, cancels the listener
/// and drops it.
class FileHTTPServer {
public:
    /// Serves `directory`, which is taken as an absolute path with "." and ".." resolved. Neither
    /// touches the disk nor listens.
    FileHTTPServer(std::string_view directory, ServerPool& pool);
    /// Closes the socket. Requests that are still being read end, responses under way finish.
    ~FileHTTPServer();
    FileHTTPServer(const FileHTTPServer&) = delete;
    FileHTTPServer& operator=(const FileHTTPServer&) = delete;

    /// Listens on `requestedPort` of every local address, 0 for a free one that the system picks,
    /// and returns the port. Blocks until connections are accepted. The error of the operating
    /// system, whose message says what is wrong, where the port cannot be had, or the pool's
    /// threads.
    [[nodiscard]] std::expected<std::int64_t, std::error_code>
    startListener(std::uint16_t requestedPort);

    std::int64_t port = 0; ///< the port in use; 0 until there is one
    std::atomic<bool> isRunning =
        false; ///< from listening until the listener fails or is cancelled
    std::unique_ptr<TcpListener>
        listener; ///< none until `startListener`; not to outlive the server

private:
    std::string root_;
    ServerPool& pool_;
    std::shared_ptr<ServedFolder> folder_; // none until `startListener`
};

} // namespace brevane
