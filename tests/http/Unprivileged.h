// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <filesystem>
#include <stdexcept>

namespace brevane::test {

/// Drops root's effective user ID, if the process has it, for its lifetime, since permissions do
/// not restrict root. Gives everyone access to `folder`.
class Unprivileged {
public:
    explicit Unprivileged(const std::filesystem::path& folder) : before(::geteuid()) {
        std::filesystem::permissions(folder, std::filesystem::perms::all);
        constexpr uid_t nobody = 65534;
        if (before == 0 && ::seteuid(nobody) != 0) throw std::runtime_error("cannot drop root");
    }
    ~Unprivileged() {
        if (::seteuid(before) != 0) std::abort();
    }
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

private:
    uid_t before;
};

} // namespace brevane::test
