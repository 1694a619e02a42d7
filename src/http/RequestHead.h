// SPDX-License-Identifier: MIT
#pragma once

#include "Status.h"

#include <cstddef>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace brevane {

/// A parsed request head (RFC 9112, section 3). Its header fields only affect how the connection is
/// closed.
struct RequestHead {
    bool headOnly = false; ///< the method is HEAD, not GET
    std::string path;      ///< the target without its query, percent-decoded if the result is UTF-8
    bool moreFollows = false; ///< the client sends more than this head, such as a body

    friend bool operator==(const RequestHead&, const RequestHead&) = default;
};

/// Parses the request head from everything received so far. Returns nullopt until the blank line
/// that ends it has arrived, then the request, or the status that refuses it (400 or 405). The
/// bytes are decoded as UTF-8 if all of them are UTF-8, including those after the head, otherwise
/// as ISO 8859-1. The first `searched` bytes are known to contain no blank line.
[[nodiscard]] std::optional<std::expected<RequestHead, Status>>
parseRequestHead(std::string_view received, std::size_t searched = 0);

} // namespace brevane
