// SPDX-License-Identifier: MIT
#include "StatusLine.h"

namespace brevane {

std::string statusLine(bool isConnected, std::string_view dnsName, std::string_view tailscaleIP) {
    if (!isConnected) return "Not connected";
    if (dnsName.empty() && tailscaleIP.empty()) return "Connected";
    std::string line(dnsName);
    if (!dnsName.empty() && !tailscaleIP.empty()) line += " · ";
    return line.append(tailscaleIP);
}

} // namespace brevane
