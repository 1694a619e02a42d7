// SPDX-License-Identifier: MIT
#include "FontList.h"

#ifndef __APPLE__
#include <fontconfig/fontconfig.h>
#endif

namespace brevane {

std::future<void> readFontList() {
#ifdef __APPLE__
    return {};
#else
    // Qt uses the same configuration: Fontconfig has one per process.
    return std::async(std::launch::async, [] { FcInit(); });
#endif
}

} // namespace brevane
