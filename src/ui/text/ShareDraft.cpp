// SPDX-License-Identifier: MIT
#include "ShareDraft.h"

#include "CommandBuilding.h"
#include "Path.h"
#include "Text.h"

#include <algorithm>

namespace brevane {

namespace {

std::string target(const ShareDraft& draft) {
    switch (draft.sourceType) {
    case SourceType::httpsInsecure:
        return "https+insecure://localhost:" + draft.source;
    case SourceType::text:
        return "text:" + draft.source;
    case SourceType::tcpForward:
        return "--tcp=" + draft.source + " localhost:" + draft.source;
    default:
        return draft.source;
    }
}

std::string plainCommand(const ShareDraft& draft) {
    std::string command = draft.mode == ServeMode::funnel ? "tailscale funnel" : "tailscale serve";
    if (draft.background) command += " --bg";
    if (!draft.urlPath.empty() && draft.urlPath != "/") command += " --set-path " + draft.urlPath;
    return command + " --yes " + target(draft);
}

/// Whether the shell takes a character literally anywhere in a word, as it does all outside ASCII.
bool isPlain(char character) {
    const bool isAscii = static_cast<unsigned char>(character) < 0x80;
    return !isAscii || std::string_view("-+_./,:@%0123456789"
                                        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ")
                           .contains(character);
}

} // namespace

bool canStart(const ShareDraft& draft) {
    const std::string_view source = draft.source;
    return !(isServedByUs(draft.sourceType) ? trimmedOfWhitespace(source) : source).empty();
}

std::string mountPathWord(const ShareDraft& draft) {
    std::string path = draft.urlPath;
    if (draft.sourceType == SourceType::file && path == "/")
        path += lastPathComponent(trimmedOfWhitespace(draft.source));
    return std::ranges::all_of(path, isPlain) ? draft.urlPath : inSingleQuotes(path);
}

std::string commandPreview(const ShareDraft& draft, std::string_view dnsName) {
    if (!isServedByUs(draft.sourceType)) return plainCommand(draft);
    std::string served = draft.source;
    std::string path = draft.urlPath;
    if (draft.sourceType == SourceType::directory) {
        if (!served.ends_with('/')) served += '/';
    } else if (path == "/") {
        path += lastPathComponent(draft.source);
    }
    return "Serves " + served + "\nat https://" + std::string(dnsName) + path;
}

} // namespace brevane
