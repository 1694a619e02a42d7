// SPDX-License-Identifier: MIT
#include "Configuration.h"

namespace brevane {

Configuration Configuration::compiledIn() {
    return {BREVANE_TAILSCALE_BIN, BREVANE_SHELL, BREVANE_SEARCH_PATH};
}

} // namespace brevane
