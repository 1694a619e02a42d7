// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace brevane {

/// The connection in one line: whether there is one, and under which name and address.
[[nodiscard]] std::string statusLine(bool isConnected, std::string_view dnsName,
                                     std::string_view tailscaleIP);

} // namespace brevane
