// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace brevane {

/// The connection's state in one line, with this machine's name and address if connected.
[[nodiscard]] std::string statusLine(bool isConnected, std::string_view dnsName,
                                     std::string_view tailscaleIP);

} // namespace brevane
