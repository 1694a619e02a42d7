// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace brevane {

class Acceptor;

/// The owner's handle on a server's listening socket. The destructor cancels it.
class TcpListener {
public:
    explicit TcpListener(std::shared_ptr<Acceptor> acceptor);
    ~TcpListener();
    TcpListener(const TcpListener&) = delete;
    TcpListener& operator=(const TcpListener&) = delete;

    /// Closes the socket; no connection is accepted after this returns. Responses in progress
    /// finish. Any thread.
    void cancel();

private:
    std::shared_ptr<Acceptor> acceptor_;
};

} // namespace brevane
