// SPDX-License-Identifier: MIT
#include "FuzzTarget.h"
#include "TailscaleStatusJSON.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    if (brevane::decodeTailscaleStatus(document))
        require(document.contains("BackendState") || document.contains('\\'));
    return 0;
}
