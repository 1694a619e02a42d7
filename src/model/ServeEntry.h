// SPDX-License-Identifier: MIT
#pragma once

#include "RawValue.h"

#include <boost/uuid/uuid.hpp>

#include <array>
#include <string>

namespace brevane {

/// One row of the share list, as read back from the daemon. Entries are distinguished only by `id`,
/// which is newly generated for each entry.
struct ServeEntry {
    /// The kind of target behind a row.
    enum class HandlerType {
        proxy,    ///< a proxy target, or a handler of an unknown kind
        filePath, ///< a file or folder that the daemon itself serves
        text,     ///< a fixed text
        tcp,      ///< a raw TCP target
    };

    boost::uuids::uuid id;
    bool isFunnel;        ///< the host and port are reachable from the public internet
    std::string hostPort; ///< the machine's full DNS name, ":" and the port
    std::string urlPath;  ///< mount path, beginning with "/"; "/" for a TCP forward
    HandlerType handlerType;
    std::string handlerDetail; ///< the target: URL, path, text or address; may be empty
    bool isBackground;         ///< from the daemon's persistent configuration
};

/// Returns a new random UUID (RFC 4122, version 4). Any thread.
[[nodiscard]] boost::uuids::uuid makeEntryId();

template <>
struct RawValues<ServeEntry::HandlerType> {
    static constexpr std::array<std::pair<ServeEntry::HandlerType, std::string_view>, 4> cases{{
        {ServeEntry::HandlerType::proxy, "Port Proxy"},
        {ServeEntry::HandlerType::filePath, "File/Directory"},
        {ServeEntry::HandlerType::text, "Text"},
        {ServeEntry::HandlerType::tcp, "TCP Forward"},
    }};
};

} // namespace brevane
