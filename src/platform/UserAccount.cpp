// SPDX-License-Identifier: MIT
#include "UserAccount.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <vector>

namespace brevane {

namespace {

// Empty if the database does not know the user or cannot be read.
std::string askDatabase() {
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
        return found != nullptr ? found->pw_dir : "";
    }
}

} // namespace

std::string homeDirectory() {
    static std::mutex mutex;
    static std::string known; // guarded by mutex
    const std::scoped_lock lock(mutex);
    if (known.empty()) known = askDatabase();
    return known.empty() ? "/" : known;
}

} // namespace brevane
