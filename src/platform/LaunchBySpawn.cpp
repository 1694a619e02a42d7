// SPDX-License-Identifier: MIT
#include "Launch.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <csignal>

namespace brevane {

namespace {

// Connects the standard descriptors of the child.
struct FileActions {
    FileActions() { posix_spawn_file_actions_init(&actions); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    // Returns an error number, or 0.
    int connect(int standardOutput, int standardError) {
        for (const int error : {
                 posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0),
                 posix_spawn_file_actions_adddup2(&actions, standardOutput, STDOUT_FILENO),
                 posix_spawn_file_actions_adddup2(&actions, standardError, STDERR_FILENO),
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

    // Returns an error number, or 0.
    int isolate() {
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        constexpr int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID |
                              POSIX_SPAWN_CLOEXEC_DEFAULT;
        for (const int error : {posix_spawnattr_setsigmask(&attributes, &none),
                                posix_spawnattr_setsigdefault(&attributes, &all),
                                posix_spawnattr_setflags(&attributes, static_cast<short>(flags))}) {
            if (error != 0) return error;
        }
        return 0;
    }

    posix_spawnattr_t attributes{};
};

} // namespace

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

} // namespace brevane
