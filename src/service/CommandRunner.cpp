// SPDX-License-Identifier: MIT
#include "CommandRunner.h"

#include "Text.h"
#include "UserAccount.h"

#include <unistd.h>

#include <utility>
#include <vector>

// NOLINTNEXTLINE(readability-redundant-declaration): not every system's headers declare it.
extern char** environ;

namespace brevane {

namespace {

// The application's environment with HOME and PATH replaced.
std::vector<std::string> childEnvironment(const std::string& searchPath) {
    std::vector<std::string> environment;
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        if (!text.starts_with("HOME=") && !text.starts_with("PATH="))
            environment.emplace_back(text);
    }
    environment.push_back("HOME=" + homeDirectory());
    environment.push_back("PATH=" + searchPath);
    return environment;
}

} // namespace

CommandRunner::CommandRunner(Configuration configuration)
    : configuration_(std::move(configuration)) {}

CommandRunner::Result CommandRunner::runShellWithCode(const std::string& commandLine,
                                                      std::chrono::milliseconds patience) const {
    // Each further command would have a second to end after SIGTERM, but quitting has two in all.
    if (interrupted_) return {.output = "", .status = -1};
    const ChildProcess shell{.executable = configuration_.shell,
                             .arguments = {"-l", "-c", commandLine},
                             .environment = childEnvironment(configuration_.searchPath),
                             .patience = patience};
    auto outcome = shell.run(stop_);
    if (!outcome) return {.output = "", .status = -1};

    std::string& output = outcome->standardOutput;
    if (!isUtf8(output)) output.clear();
    if (isUtf8(outcome->standardError)) output += outcome->standardError;
    return {.output = std::string(trimmedOfWhitespaceAndNewlines(output)),
            .status = outcome->status};
}

void CommandRunner::interrupt() {
    interrupted_ = true;
    stop_.raise();
}

std::string CommandRunner::runShell(const std::string& commandLine) const {
    return runShellWithCode(commandLine).output;
}

} // namespace brevane
