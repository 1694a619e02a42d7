// SPDX-License-Identifier: MIT
#pragma once

#include "ServeEntry.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace brevane {

/// What makes a share the same share after a refresh, which gives every entry a new `id`.
struct ShareKey {
    std::string hostPort;
    std::string urlPath;
    ServeEntry::HandlerType handlerType;
    std::size_t occurrence; ///< how many shares before it have the same three values

    bool operator==(const ShareKey&) const = default;
};

/// The key of one of these shares.
[[nodiscard]] ShareKey shareKey(const std::vector<ServeEntry>& shares, std::size_t index);

/// Where the share with this key is; nothing if there is none any more.
[[nodiscard]] std::optional<std::size_t> indexOf(const ShareKey& key,
                                                 const std::vector<ServeEntry>& shares);

} // namespace brevane
