// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <expected>
#include <system_error>

namespace brevane {

/// Returns the port to listen on: `requested`, or for 0 a free one picked by the system, if nothing
/// accepts connections on it at 127.0.0.1 or ::1. macOS lets a socket bind to all addresses
/// although another one is bound to loopback, which then gets all local connections. Blocks for at
/// most a tenth of a second for each port tried. Returns std::errc::address_in_use if the port is
/// taken, otherwise the operating system's error.
[[nodiscard]] std::expected<std::uint16_t, std::error_code> loopbackPort(std::uint16_t requested);

} // namespace brevane
