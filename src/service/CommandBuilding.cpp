// SPDX-License-Identifier: MIT
#include "CommandBuilding.h"

#include "Text.h"

namespace brevane {

namespace {

// Everything before the target. Any mount path but the root is passed on, without normalising it.
std::string commandHead(std::string_view tailscaleBin, ServeMode mode, std::string_view urlPath,
                        bool background) {
    std::string line(tailscaleBin);
    line += mode == ServeMode::funnel ? " funnel" : " serve";
    if (background) line += " --bg";
    if (!urlPath.empty() && urlPath != "/") line.append(" --set-path ").append(urlPath);
    line += " --yes";
    return line;
}

} // namespace

std::string shellQuote(std::string_view text) {
    const bool needsQuotes = text.find_first_of(" ()&'") != std::string_view::npos;
    return needsQuotes ? inSingleQuotes(text) : std::string(text);
}

std::string inSingleQuotes(std::string_view text) {
    std::string quoted = "'";
    for (const char character : text) {
        if (character == '\'')
            quoted += R"('\'')"; // close the quotes, add an escaped quote, reopen them
        else
            quoted += character;
    }
    quoted += '\'';
    return quoted;
}

std::string buildAddCommand(std::string_view tailscaleBin, ServeMode mode, SourceType sourceType,
                            std::string_view source, std::string_view urlPath, bool background) {
    std::string line = commandHead(tailscaleBin, mode, urlPath, background);
    const std::string target(trimmedOfWhitespace(source));
    switch (sourceType) {
    case SourceType::port:
        line += " " + target;
        break;
    case SourceType::httpsInsecure:
        line += " https+insecure://localhost:" + target;
        break;
    case SourceType::text:
        line += " text:" + shellQuote(target);
        break;
    case SourceType::tcpForward:
        line += " --tcp=" + target + " localhost:" + target;
        break;
    case SourceType::file:
    case SourceType::directory:
        break; // shared through the port of a file server
    }
    return line;
}

std::string buildPortServeCommand(std::string_view tailscaleBin, ServeMode mode, std::int64_t port,
                                  std::string_view urlPath, bool background) {
    return commandHead(tailscaleBin, mode, urlPath, background) + " " + std::to_string(port);
}

} // namespace brevane
