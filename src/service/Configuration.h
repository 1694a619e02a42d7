// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace brevane {

/// What the service runs its commands with.
struct Configuration {
    std::string tailscaleBin; ///< path of the tailscale executable; one plain word to the shell
    std::string shell;        ///< path of the login shell that runs every command line
    std::string searchPath;   ///< PATH of every command

    /// The values that the program was built with.
    [[nodiscard]] static Configuration compiledIn();
};

} // namespace brevane
