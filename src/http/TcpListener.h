// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace brevane {

class Acceptor;

/// A server's owner's hold on its listening socket. Dropping it cancels it.
class TcpListener {
public:
    explicit TcpListener(std::shared_ptr<Acceptor> acceptor);
    ~TcpListener();
    TcpListener(const TcpListener&) = delete;
    TcpListener& operator=(const TcpListener&) = delete;

    /// Closes the socket at once and returns when no connection can be accepted any more.
    /// Responses under way finish. Any thread.
    void cancel();

private:
    std::shared_ptr<Acceptor> acceptor_;
};

} // namespace brevane
