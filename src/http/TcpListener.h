// SPDX-License-Identifier: MIT
#pragma once

namespace brevane {

/// A listening TCP socket on every local address. Dropping it cancels it.
class TcpListener {
public:
    virtual ~TcpListener() = default;
    /// Closes the socket at once and returns when no connection can be accepted any more.
    /// Responses under way finish. Any thread.
    virtual void cancel() = 0;
};

} // namespace brevane
