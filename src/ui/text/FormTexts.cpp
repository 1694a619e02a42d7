// SPDX-License-Identifier: MIT
#include "FormTexts.h"

namespace brevane {

SourceTexts sourceTexts(SourceType sourceType) {
    switch (sourceType) {
    case SourceType::port:
        break;
    case SourceType::file:
        return {"File Path", "/Users/you/file.html",
                "Serves a single file. Supports any file type — HTML, images, PDFs, etc."};
    case SourceType::directory:
        return {
            "Directory Path", "/Users/you/site/",
            "Serves all files in the folder. Includes automatic directory listing, so visitors can "
            "browse the contents."};
    case SourceType::httpsInsecure:
        return {
            "Local HTTPS Port", "8443",
            "Proxies to a local HTTPS server with a self-signed or otherwise invalid certificate, "
            "bypassing TLS verification."};
    case SourceType::text:
        return {"Text Content", "Hello, World!",
                "Serves the typed text as a plain-text HTTP response at the URL path. Useful for "
                "simple "
                "health checks or webhooks."};
    case SourceType::tcpForward:
        return {
            "Local Port", "2222  (local port to expose)",
            "Exposes a raw TCP port — useful for SSH (22) or other non-HTTP services. Available "
            "ports: 443, 8443, 10000."};
    }
    return {"Port or URL", "3000  or  http://127.0.0.1:3000/api",
            "Proxies to a local HTTP server. Examples: 3000 · localhost:3000 · "
            "http://127.0.0.1:3000/api"};
}

std::string_view modeDescription(ServeMode mode) {
    return mode == ServeMode::funnel ? "Funnel exposes your service to the public internet — "
                                       "anyone with the URL can access it. "
                                       "Requires Funnel to be enabled in your tailnet policy."
                                     : "Serve shares only within your Tailscale network. Only "
                                       "devices on your tailnet can access "
                                       "it.";
}

std::string_view modeCaption(ServeMode mode) {
    return mode == ServeMode::funnel ? "Public internet — anyone with the URL"
                                     : "Tailnet only — private to your network";
}

std::string_view urlPathHint(SourceType sourceType) {
    return sourceType == SourceType::file
               ? "Leave as / to use the filename as the path (e.g. /file.html)."
               : "Path under which the resource is accessible. Default: /";
}

std::string startLabel(ServeMode mode) {
    return "Start " + std::string(rawValue(mode));
}

std::string startedMessage(ServeMode mode) {
    return std::string(rawValue(mode)) + " started successfully";
}

std::string_view startFailedMessage(std::string_view output) {
    return output.empty()
               ? "Failed. Make sure Tailscale is running and you have Funnel permission in your "
                 "tailnet policy."
               : output;
}

std::string_view stopFailedMessage(std::string_view output) {
    return output.empty() ? "Failed to stop share" : output;
}

} // namespace brevane
