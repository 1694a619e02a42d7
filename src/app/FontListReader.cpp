// SPDX-License-Identifier: MIT
#include "FontListReader.h"

#ifndef __APPLE__
#include <fontconfig/fontconfig.h>
#endif

namespace brevane {

FontListReader::FontListReader() {
#ifndef __APPLE__
    // Qt uses the same configuration: Fontconfig has one per process.
    thread_ = std::thread([] { FcInit(); });
#endif
}

FontListReader::~FontListReader() {
    if (thread_.joinable()) thread_.join();
}

} // namespace brevane
