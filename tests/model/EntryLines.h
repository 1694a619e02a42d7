// SPDX-License-Identifier: MIT
#pragma once

#include "ServeEntry.h"

#include <string>
#include <vector>

namespace brevane::test {

/// A row as one line: reach, host and port, mount path, kind, target, background or foreground.
inline std::string entryLine(bool isFunnel, std::string_view hostPort, std::string_view urlPath,
                             std::string_view kind, std::string_view detail, bool isBackground) {
    std::string line = isFunnel ? "funnel " : "serve ";
    line.append(hostPort).append(" ").append(urlPath).append(" ").append(kind);
    line.append(" '").append(detail).append(isBackground ? "' background" : "' foreground");
    return line;
}

inline std::vector<std::string> entryLines(const std::vector<ServeEntry>& entries) {
    std::vector<std::string> lines;
    for (const ServeEntry& entry : entries)
        lines.push_back(entryLine(entry.isFunnel, entry.hostPort, entry.urlPath,
                                  rawValue(entry.handlerType), entry.handlerDetail,
                                  entry.isBackground));
    return lines;
}

} // namespace brevane::test
