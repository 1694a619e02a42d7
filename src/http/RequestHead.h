// SPDX-License-Identifier: MIT
#pragma once

#include "Status.h"

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// What a request asks for (RFC 9112, section 3). Its header fields count for nothing but how the
/// connection is closed.
struct RequestHead {
    bool headOnly = false; ///< the method is HEAD, not GET
    std::string path;      ///< the target without its query, percent-decoded where that gives UTF-8
    bool moreFollows = false; ///< the client sends more than this head, a body for example

    friend bool operator==(const RequestHead&, const RequestHead&) = default;
};

/// Reads the head of a request from all that was received so far: nothing while its end, the blank
/// line, is missing; else the request, or the status that refuses it (400 or 405). The bytes
/// are UTF-8 or else ISO 8859-1, which is decided by all of them, those after the head included.
/// `searched` bytes at the front are known to hold no blank line.
[[nodiscard]] std::optional<std::expected<RequestHead, Status>>
parseRequestHead(std::string_view received, std::size_t searched = 0);

} // namespace brevane
