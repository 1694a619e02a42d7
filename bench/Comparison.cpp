// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

// The main function of every benchmark program. It interleaves the benchmarks of each measure, so
// that temporary load on the machine affects both sides.
namespace {

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Prints {"name", "value", "unit", "peer", "peer_value", "ratio"} for each measure: the medians of
/// the repetitions' processor times.
class Comparison : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const std::string& name = run.run_name.function_name;
            const std::size_t slash = name.rfind('/');
            const double milliseconds =
                run.cpu_accumulated_time * 1e3 / static_cast<double>(run.iterations);
            samples[name.substr(0, slash)][name.substr(slash + 1)].push_back(milliseconds);
        }
    }

    void Finalize() override {
        for (const auto& [measure, sides] : samples) {
            const auto ours = sides.find("brevane");
            if (ours == sides.end()) continue;
            const double value = median(ours->second);
            for (const auto& [peer, values] : sides) {
                if (peer == "brevane") continue;
                const double peerValue = median(values);
                std::printf(R"({"name":"%s","value":%.4g,"unit":"ms","peer":"%s",)"
                            R"("peer_value":%.4g,"ratio":%.3g})"
                            "\n",
                            measure.c_str(), value, peer.c_str(), peerValue, value / peerValue);
            }
        }
    }

private:
    std::map<std::string, std::map<std::string, std::vector<double>>> samples;
};

} // namespace

int main(int count, char** arguments) {
    std::vector<char*> all(arguments, arguments + count);
    std::string inTurns = "--benchmark_enable_random_interleaving=true";
    std::string repeated = "--benchmark_repetitions=31";
    std::string briefly = "--benchmark_min_time=0.05";
    // Inserted first, so that the caller's options override them.
    all.insert(all.begin() + 1, {inTurns.data(), repeated.data(), briefly.data()});
    int size = static_cast<int>(all.size());
    benchmark::Initialize(&size, all.data());
    if (benchmark::ReportUnrecognizedArguments(size, all.data())) return 2;
    Comparison comparison;
    benchmark::RunSpecifiedBenchmarks(&comparison);
}
