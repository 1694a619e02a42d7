// SPDX-License-Identifier: MIT
#pragma once

#include "RawValue.h"

#include <array>

namespace brevane {

/// Who can reach a share.
enum class ServeMode {
    serve,  ///< devices of the user's tailnet only (`tailscale serve`)
    funnel, ///< the public internet (`tailscale funnel`)
};

/// Every mode, in the order shown by a picker.
inline constexpr std::array allServeModes{ServeMode::serve, ServeMode::funnel};

template <>
struct RawValues<ServeMode> {
    static constexpr std::array<std::pair<ServeMode, std::string_view>, 2> cases{{
        {ServeMode::serve, "Serve"},
        {ServeMode::funnel, "Funnel"},
    }};
};

} // namespace brevane
