// SPDX-License-Identifier: MIT
#include "FileHTTPServer.h"

#include "Acceptor.h"
#include "Path.h"
#include "ServedFolder.h"

#include <boost/system/system_error.hpp>

namespace brevane {

namespace {

class AcceptingListener final : public TcpListener {
public:
    explicit AcceptingListener(std::shared_ptr<Acceptor> accepting)
        : acceptor(std::move(accepting)) {}
    ~AcceptingListener() override { acceptor->stop(); }

    void cancel() override { acceptor->stop(); }

private:
    std::shared_ptr<Acceptor> acceptor;
};

} // namespace

FileHTTPServer::FileHTTPServer(std::string_view directory, ServerPool& serverPool)
    : root(standardizedPath(directory)), pool(serverPool) {}

FileHTTPServer::~FileHTTPServer() {
    listener.reset();
}

std::expected<std::int64_t, std::error_code>
FileHTTPServer::startListener(std::uint16_t requestedPort) {
    try {
        if (!folder) folder = std::make_shared<ServedFolder>(root, pool.start());
    } catch (const std::system_error& failure) {
        return std::unexpected(failure.code());
    } catch (const boost::system::system_error& failure) {
        return std::unexpected(std::error_code(failure.code()));
    }
    auto acceptor = std::make_shared<Acceptor>(folder, isRunning);
    if (const std::error_code error = acceptor->listen(requestedPort))
        return std::unexpected(error);
    port = acceptor->port();
    listener = std::make_unique<AcceptingListener>(acceptor);
    isRunning = true;
    acceptor->start();
    return port;
}

} // namespace brevane
