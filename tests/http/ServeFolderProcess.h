// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>

namespace brevane::test {

/// serve-folder in a separate process with a limited number of descriptors.
class ServeFolderProcess {
public:
    ServeFolderProcess(const std::filesystem::path& folder, rlim_t descriptors) {
        std::array<int, 2> input{};
        std::array<int, 2> output{};
        if (::pipe2(input.data(), O_CLOEXEC) != 0 || ::pipe2(output.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("pipe2");
        const Descriptor childInput(input[0]);
        input_ = Descriptor(input[1]);
        const Descriptor portText(output[0]);
        {
            const Descriptor childOutput(output[1]);
            child_ = ::fork();
            if (child_ == 0) {
                const rlimit tight{.rlim_cur = descriptors, .rlim_max = descriptors};
                ::setrlimit(RLIMIT_NOFILE, &tight);
                ::dup2(input[0], STDIN_FILENO);
                ::dup2(output[1], STDOUT_FILENO);
                ::execl(SERVE_FOLDER, SERVE_FOLDER, folder.c_str(), "0", nullptr);
                ::_exit(127);
            }
        }
        std::string text;
        char digit = 0;
        while (::read(portText.get(), &digit, 1) == 1 && digit != '\n')
            text += digit;
        port_ = std::stoll(text);
    }
    ~ServeFolderProcess() {
        input_.close();
        ::waitpid(child_, nullptr, 0);
    }
    ServeFolderProcess(const ServeFolderProcess&) = delete;
    ServeFolderProcess& operator=(const ServeFolderProcess&) = delete;

    [[nodiscard]] std::int64_t port() const { return port_; }
    [[nodiscard]] std::size_t openDescriptors() const {
        const std::filesystem::directory_iterator open("/proc/" + std::to_string(child_) + "/fd");
        return static_cast<std::size_t>(std::distance(begin(open), end(open)));
    }

private:
    pid_t child_ = 0;
    Descriptor input_;
    std::int64_t port_ = 0;
};

} // namespace brevane::test
