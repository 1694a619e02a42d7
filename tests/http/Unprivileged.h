// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <filesystem>
#include <stdexcept>

namespace brevane::test {

/// Takes root's rights from the process, if it has them, for as long as it lives: nobody is kept
/// out by permissions otherwise. All may enter `folder`.
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
