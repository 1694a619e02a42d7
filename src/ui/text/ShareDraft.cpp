// SPDX-License-Identifier: MIT
#include "ShareDraft.h"

#include "Path.h"
#include "Text.h"

namespace brevane {

namespace {

bool isServedByUs(SourceType type) {
    return type == SourceType::file || type == SourceType::directory;
}

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

} // namespace

bool canStart(const ShareDraft& draft) {
    const std::string_view source = draft.source;
    return !(isServedByUs(draft.sourceType) ? trimmedOfWhitespace(source) : source).empty();
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
