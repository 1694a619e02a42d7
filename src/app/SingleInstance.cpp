// SPDX-License-Identifier: MIT
#include "SingleInstance.h"

#include "DoorbellSocket.h"

#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brevane {

namespace {

// Longer than an instance may take to end.
constexpr std::chrono::seconds patience{3};
constexpr std::chrono::milliseconds between{20};

int openFolder(const std::filesystem::path& folder) {
    std::error_code error;
    if (std::filesystem::create_directories(folder, error))
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
    return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

std::string socketName(int folder) {
    struct stat status {};
    fstat(folder, &status);
    return "brevane-" + std::to_string(status.st_dev) + "-" + std::to_string(status.st_ino);
}

} // namespace

SingleInstance::SingleInstance(const std::filesystem::path& path)
    : folder(openFolder(path)), name(socketName(folder)) {}

SingleInstance::~SingleInstance() {
    if (folder >= 0) close(folder);
}

SingleInstance::Claim SingleInstance::claim() {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    DoorbellSocket caller;
    bool asked = false;
    do {
        // Tried each time: who has the lock may be about to end.
        if (flock(folder, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
            doorbell = std::make_unique<DoorbellSocket>(name);
            return Claim::first;
        }
        // Refused while the other one is between its lock and its socket.
        asked = asked || caller.ring(name);
        if (caller.waitForRing(between)) return Claim::otherAsked;
    } while (std::chrono::steady_clock::now() < deadline);
    return asked ? Claim::otherAsked : Claim::noAnswer;
}

void SingleInstance::onRaise(std::function<void()> raise) {
    if (!doorbell || doorbell->descriptor() < 0) return;
    notifier = std::make_unique<QSocketNotifier>(doorbell->descriptor(), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                     [this, raise = std::move(raise)] {
                         while (const auto caller = doorbell->nextRing())
                             doorbell->ring(*caller);
                         raise();
                     });
}

} // namespace brevane
