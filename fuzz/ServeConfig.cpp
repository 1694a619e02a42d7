// SPDX-License-Identifier: MIT
#include "EntryExtraction.h"
#include "FuzzTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view document(reinterpret_cast<const char*>(data), size);
    const auto config = brevane::decodeServeConfig(document);
    if (!config) return 0;
    const auto entries = brevane::extractEntries(*config, "node.tailnet.ts.net");
    // Funnelled entries come last.
    require(
        std::ranges::is_partitioned(entries, [](const auto& entry) { return !entry.isFunnel; }));
    for (const auto& entry : entries)
        require(entry.handlerType != brevane::ServeEntry::HandlerType::tcp || entry.urlPath == "/");
    return 0;
}
