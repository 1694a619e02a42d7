// SPDX-License-Identifier: MIT
#include "CommandLine.h"

namespace brevane {

namespace {

constexpr const char* usage = "Usage: brevane [--help | --version]\n"
                              "\n"
                              "A window in front of tailscale serve and tailscale funnel.\n"
                              "\n"
                              "  --help     show this text and exit\n"
                              "  --version  show the version and exit\n";

} // namespace

std::string_view buildVersion() {
    return BREVANE_VERSION;
}

std::optional<CommandLineAnswer> answerCommandLine(std::span<const std::string_view> arguments) {
    while (!arguments.empty()) {
        const std::string_view first = arguments.front();
        if (first == "--help") return CommandLineAnswer{usage, 0};
        if (first == "--version")
            return CommandLineAnswer{"brevane " + std::string(buildVersion()) + "\n", 0};
        if (first != "-session" || arguments.size() < 2)
            return CommandLineAnswer{
                "brevane: unknown option '" + std::string(first) + "'\n" + usage, 2};
        arguments = arguments.subspan(2);
    }
    return std::nullopt;
}

} // namespace brevane
