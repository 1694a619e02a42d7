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
    // Qt finds the same configuration, since the process has only one.
    return std::async(std::launch::async, [] { FcInit(); });
#endif
}

} // namespace brevane
