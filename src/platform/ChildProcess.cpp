// SPDX-License-Identifier: MIT
#include "ChildProcess.h"

#include "RunningChild.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace brevane {

namespace {

// What the child does with its descriptors before it starts.
struct FileActions {
    FileActions() { posix_spawn_file_actions_init(&actions); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    // The number of an error, or 0.
    int connect(int standardOutput, int standardError) {
        for (const int error : {
                 posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0),
                 posix_spawn_file_actions_adddup2(&actions, standardOutput, STDOUT_FILENO),
                 posix_spawn_file_actions_adddup2(&actions, standardError, STDERR_FILENO),
#ifndef __APPLE__
                 posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1),
#endif
             }) {
            if (error != 0) return error;
        }
        return 0;
    }

    posix_spawn_file_actions_t actions{};
};

struct Attributes {
    Attributes() { posix_spawnattr_init(&attributes); }
    ~Attributes() { posix_spawnattr_destroy(&attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    // The number of an error, or 0.
    int isolate() {
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        // NOLINTNEXTLINE(misc-const-correctness): it grows on macOS.
        int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP;
#ifdef __APPLE__
        flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#endif
        for (const int error : {posix_spawnattr_setsigmask(&attributes, &none),
                                posix_spawnattr_setsigdefault(&attributes, &all),
                                posix_spawnattr_setpgroup(&attributes, 0),
                                posix_spawnattr_setflags(&attributes, static_cast<short>(flags))}) {
            if (error != 0) return error;
        }
        return 0;
    }

    posix_spawnattr_t attributes{};
};

// The texts as C has them, null-terminated; posix_spawn does not change them.
std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts)
        pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

std::expected<pid_t, std::error_code> launch(const ChildProcess& description, int standardOutput,
                                             int standardError) {
    FileActions files;
    Attributes attributes;
    std::vector<char*> environment = pointersTo(description.environment);
    std::vector<char*> arguments = pointersTo(description.arguments);
    arguments.insert(arguments.begin(), const_cast<char*>(description.executable.c_str()));

    pid_t process = -1;
    int error = files.connect(standardOutput, standardError);
    if (error == 0) error = attributes.isolate();
    if (error == 0)
        error = posix_spawn(&process, description.executable.c_str(), &files.actions,
                            &attributes.attributes, arguments.data(), environment.data());
    if (error != 0) return std::unexpected(std::error_code(error, std::system_category()));
    return process;
}

} // namespace

std::expected<ChildProcess::Outcome, std::error_code>
ChildProcess::run(const Interrupt& interrupt) const {
    auto output = Pipe::open();
    if (!output) return std::unexpected(output.error());
    auto error = Pipe::open();
    if (!error) return std::unexpected(error.error());

    const auto process = launch(*this, output->writeEnd.get(), error->writeEnd.get());
    if (!process) return std::unexpected(process.error());

    // The outputs are at their end once the child has closed them, so none may stay with us.
    output->writeEnd.close();
    error->writeEnd.close();
    RunningChild child(*process, std::move(output->readEnd), std::move(error->readEnd));
    return child.finish(interrupt);
}

} // namespace brevane
