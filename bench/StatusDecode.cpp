// SPDX-License-Identifier: MIT
#include "StatusDocument.h"
#include "TailscaleStatusJSON.h"

#include <benchmark/benchmark.h>
#include <simdjson.h>

// Decodes the status of a tailnet of 10,000 peers: with Brevane's decoder, which extracts two
// members, and with simdjson, which builds the whole document.
namespace {

const std::string document = brevane::bench::statusDocument(10'000);

void brevaneDecode(benchmark::State& state) {
    for (auto _ : state) {
        const auto status = brevane::decodeTailscaleStatus(document);
        if (!status || !status->selfNode) state.SkipWithError("the document does not decode");
        benchmark::DoNotOptimize(status);
    }
}

void simdjsonParse(benchmark::State& state) {
    // As its manual recommends: one parser, which reuses its buffers, and padded input.
    simdjson::dom::parser parser;
    const simdjson::padded_string padded(document);
    for (auto _ : state) {
        const auto parsed = parser.parse(padded);
        if (parsed.error()) state.SkipWithError("the document does not parse");
        benchmark::DoNotOptimize(parsed);
    }
}

BENCHMARK(brevaneDecode)->Name("status.decode/brevane");
BENCHMARK(simdjsonParse)->Name("status.decode/simdjson");

} // namespace
