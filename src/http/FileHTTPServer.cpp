// SPDX-License-Identifier: MIT
#include "FileHTTPServer.h"

#include "Acceptor.h"
#include "Path.h"
#include "ServedFolder.h"
#include "ServerThreads.h"

#include <boost/system/system_error.hpp>

namespace brevane {

FileHTTPServer::FileHTTPServer(std::string_view directory, ServerPool& pool)
    : root_(standardizedPath(directory)), pool_(pool) {}

FileHTTPServer::~FileHTTPServer() {
    listener.reset();
    if (folder_) folder_->isServed = false;
}

std::expected<std::int64_t, std::error_code>
FileHTTPServer::startListener(std::uint16_t requestedPort) {
    try {
        if (!folder_) {
            ServerThreads& threads = pool_.start();
            folder_ = std::make_shared<ServedFolder>(root_, threads, threads.makeLoaders());
        }
    } catch (const std::system_error& failure) {
        return std::unexpected(failure.code());
    } catch (const boost::system::system_error& failure) {
        return std::unexpected(std::error_code(failure.code()));
    }
    auto acceptor = std::make_shared<Acceptor>(folder_, isRunning);
    if (const std::error_code error = acceptor->listen(requestedPort))
        return std::unexpected(error);
    port = acceptor->port();
    listener = std::make_unique<TcpListener>(acceptor);
    isRunning = true;
    acceptor->start();
    return port;
}

} // namespace brevane
