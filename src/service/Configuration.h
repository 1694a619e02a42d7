// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace brevane {

/// How the service runs its commands.
struct Configuration {
    std::string tailscaleBin; ///< path of the tailscale executable; must not need shell quoting
    std::string shell;        ///< path of the login shell that runs every command line
    std::string searchPath;   ///< PATH of every command

    /// The values compiled into the program.
    [[nodiscard]] static Configuration compiledIn();
};

} // namespace brevane
