// SPDX-License-Identifier: MIT
#pragma once

#include "RawValue.h"

#include <array>

namespace brevane {

/// What a new share exposes.
enum class SourceType {
    port,          ///< a local port or an application URL, proxied
    file,          ///< one local file, through Brevane's own HTTP server
    directory,     ///< a local folder, through Brevane's own HTTP server
    httpsInsecure, ///< a local HTTPS server whose certificate is not checked
    text,          ///< a fixed text
    tcpForward,    ///< raw TCP
};

/// Every source type, in the order shown by a picker.
inline constexpr std::array allSourceTypes{SourceType::port,      SourceType::file,
                                           SourceType::directory, SourceType::httpsInsecure,
                                           SourceType::text,      SourceType::tcpForward};

/// Whether shares of this type go through Brevane's own HTTP server.
[[nodiscard]] constexpr bool isServedByUs(SourceType type) {
    return type == SourceType::file || type == SourceType::directory;
}

template <>
struct RawValues<SourceType> {
    static constexpr std::array<std::pair<SourceType, std::string_view>, 6> cases{{
        {SourceType::port, "Port / App URL"},
        {SourceType::file, "File"},
        {SourceType::directory, "Directory"},
        {SourceType::httpsInsecure, "HTTPS (self-signed)"},
        {SourceType::text, "Plain Text"},
        {SourceType::tcpForward, "TCP Forward"},
    }};
};

/// The ID of a source type in a list: its raw value.
[[nodiscard]] constexpr std::string_view id(SourceType type) {
    return rawValue(type);
}

} // namespace brevane
