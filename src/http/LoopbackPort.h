// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <expected>
#include <system_error>

namespace brevane {

/// The port to listen on: `requested`, or for 0 a free one that the system picks, neither of which
/// another program has on 127.0.0.1 or ::1. macOS lets a socket be bound to every address beside
/// one that is bound to loopback, and gives all local connections to the latter. Blocks for as long
/// as loopback takes to answer, a tenth of a second at most. std::errc::address_in_use where
/// another program accepts connections on `requested`, else the error of the operating system.
[[nodiscard]] std::expected<std::uint16_t, std::error_code> loopbackPort(std::uint16_t requested);

} // namespace brevane
