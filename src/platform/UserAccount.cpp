// SPDX-License-Identifier: MIT
#include "UserAccount.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace brevane {

std::string homeDirectory() {
    std::vector<char> buffer(1024);
    while (true) {
        passwd account{};
        passwd* found = nullptr;
        const int error = getpwuid_r(getuid(), &account, buffer.data(), buffer.size(), &found);
        if (error == EINTR) continue;
        if (error == ERANGE) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        return found != nullptr ? found->pw_dir : "/";
    }
}

} // namespace brevane
