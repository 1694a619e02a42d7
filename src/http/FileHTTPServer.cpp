// SPDX-License-Identifier: MIT
#include "FileHTTPServer.h"

#include "Acceptor.h"
#include "Path.h"
#include "ServedFolder.h"

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

FileHTTPServer::FileHTTPServer(std::string_view directory, ServerPool& pool)
    : folder(std::make_shared<ServedFolder>(standardizedPath(directory), *pool.threads)) {}

FileHTTPServer::~FileHTTPServer() {
    listener.reset();
}

std::expected<std::int64_t, std::error_code>
FileHTTPServer::startListener(std::uint16_t requestedPort) {
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
