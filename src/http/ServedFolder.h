// SPDX-License-Identifier: MIT
#pragma once

#include "ServerThreads.h"

#include <string>

namespace brevane {

/// What the connections of one server share. It lives as long as the server; a connection that
/// finds it gone ends.
struct ServedFolder {
    std::string root; ///< a standardized path
    ServerThreads& threads;
};

} // namespace brevane
