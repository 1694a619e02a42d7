// SPDX-License-Identifier: MIT
//
// Compares the window with a bare one of the same size, on the screen that DISPLAY names or
// otherwise on one of its own, and prints one JSON object per measure, each on a line. The two take
// turns, so that temporary load on the machine affects both.

#include "Clock.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <unistd.h>

using namespace brevane::bench;

namespace {

constexpr int rounds = 15;

using Values = std::map<std::string, std::vector<double>>;

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// Runs a program and appends the values that it reports, by name.
void run(const std::string& command, Values& values) {
    setenv("BENCH_STARTED", std::to_string(now()).c_str(), 1);
    std::FILE* output = popen(("exec " + command).c_str(), "r");
    if (output == nullptr) return;
    char name[64];
    double value = 0;
    while (std::fscanf(output, "%63s %lf", name, &value) == 2)
        values[name].push_back(value);
    pclose(output);
}

/// Creates a tailscale that only lists this many shares; returns its path.
std::string makeTailscale(const std::filesystem::path& folder, int shares) {
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "status")
        << R"({"BackendState":"Running","Self":{"DNSName":"heron.alder-finch.ts.net.",)"
           R"("TailscaleIPs":["100.101.32.7"],"HostName":"heron"}})";
    std::ofstream serve(folder / "serve");
    serve << R"({"Web":{"heron.alder-finch.ts.net:443":{"Handlers":{)";
    for (int i = 0; i < shares; ++i)
        serve << (i == 0 ? "" : ",") << "\"/app" << i << R"(":{"Proxy":"http://127.0.0.1:3000"})";
    serve << "}}}}";
    const auto program = folder / "tailscale";
    std::ofstream(program) << "#!/bin/sh\ncase \"$*\" in\n'status --json') cat "
                           << (folder / "status").string() << " ;;\n'serve status --json') cat "
                           << (folder / "serve").string() << " ;;\nesac\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    return program.string();
}

/// How long both queries take without Brevane, in milliseconds.
double commandsOwnTime(const std::string& tailscale) {
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const double start = now();
        for (const char* query : {" status --json", " serve status --json"}) {
            const std::string line = "/bin/zsh -l -c '" + tailscale + query + "' > /dev/null";
            if (std::system(line.c_str()) != 0) return 0;
        }
        times.push_back(now() - start);
    }
    return median(times);
}

void print(const char* name, double value, const char* unit, double peer) {
    std::printf(
        R"({"name":"window.%s","value":%.4g,"unit":"%s","peer":"bare QWidget","peer_value":%.4g,)"
        R"("ratio":%.3g})"
        "\n",
        name, value, unit, peer, value / peer);
}
void print(const char* name, double value) {
    std::printf(
        R"({"name":"window.%s","value":%.4g,"unit":"ms","peer":null,"peer_value":null,"ratio":null})"
        "\n",
        name, value);
}

} // namespace

int main(int, char** argv) {
    if (std::getenv("DISPLAY") == nullptr) {
        // With -noreset, the end of one program does not disconnect the next.
        execlp("xvfb-run", "xvfb-run", "--auto-servernum",
               "--server-args=-screen 0 1280x1024x24 -noreset", argv[0], nullptr);
        std::perror("xvfb-run");
        return 1;
    }
    std::string pattern =
        (std::filesystem::temp_directory_path() / "brevane-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) return 1;
    const std::filesystem::path folder = pattern;
    const std::string few = makeTailscale(folder / "few", 50);
    const std::string many = makeTailscale(folder / "many", 500);
    const std::string absurd = makeTailscale(folder / "absurd", 10'000);

    Values bare;
    Values ours;
    Values withMany;
    Values withAbsurd;
    for (int round = 0; round < rounds; ++round) {
        run(BARE_WINDOW, bare);
        run(BREVANE_WINDOW " " + few + " start", ours);
        run(BREVANE_WINDOW " " + many + " list", withMany);
    }
    run(BREVANE_WINDOW " " + few + " inside", ours);
    run(BREVANE_WINDOW " " + absurd + " list", withAbsurd);
    const double commands = commandsOwnTime(many);
    std::filesystem::remove_all(folder);

    const double bareFrame = median(bare["first_frame"]);
    print("first_frame", median(ours["first_frame"]), "ms", bareFrame);
    print("first_list_500", median(withMany["first_list"]) - commands, "ms", bareFrame);
    print("first_list_10k", median(withAbsurd["first_list"]) - commands, "ms", bareFrame);
    const double bareMemory = median(bare["memory"]);
    print("memory", median(ours["memory"]), "MiB", bareMemory);
    print("memory_500", median(withMany["memory"]), "MiB", bareMemory);
    print("memory_10k", median(withAbsurd["memory"]), "MiB", bareMemory);
    for (const char* name : {"replace_500", "replace_10k", "scroll_500", "scroll_10k", "idle",
                             "start_press", "refresh"})
        print(name, median(ours[name]));
}
