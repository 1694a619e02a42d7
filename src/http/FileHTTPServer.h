// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <expected>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace brevane {

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
    struct Threads;
    std::unique_ptr<Threads> threads;
};

/// A listening TCP socket on every local address.
class TcpListener {
public:
    virtual ~TcpListener() = default;
    /// Closes the socket at once and returns when no connection can be accepted any more.
    /// Responses under way finish. Any thread but the pool's own.
    virtual void cancel() = 0;
};

/// A small HTTP/1.1 server (RFC 9112) for one folder on one local port: GET and HEAD, one request
/// per connection. It has no stop of its own: its owner clears `isRunning`, cancels the listener
/// and drops it.
class FileHTTPServer {
public:
    /// Serves `directory`, which is taken as an absolute path with "." and ".." resolved. Neither
    /// touches the disk nor listens.
    FileHTTPServer(std::string_view directory, ServerPool& pool);
    ~FileHTTPServer();
    FileHTTPServer(const FileHTTPServer&) = delete;
    FileHTTPServer& operator=(const FileHTTPServer&) = delete;

    /// Listens on `requestedPort` of every local address, 0 for a free one that the system picks, and
    /// returns the port. Blocks until connections are accepted. The error of the operating system,
    /// whose message says what is wrong, where the port cannot be had.
    [[nodiscard]] std::expected<std::int64_t, std::error_code> startListener(std::uint16_t requestedPort);

    std::int64_t port = 0;                 ///< the port in use; 0 until there is one
    std::atomic<bool> isRunning = false;   ///< from listening until the listener fails or is cancelled
    std::unique_ptr<TcpListener> listener; ///< none until `startListener`

private:
    ServerPool& pool;
    std::string directory;
};

} // namespace brevane
