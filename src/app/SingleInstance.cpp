// SPDX-License-Identifier: MIT
#include "SingleInstance.h"

#include "DoorbellSocket.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brevane {

namespace {

// Longer than an instance may take to quit.
constexpr std::chrono::seconds patience{3};
constexpr std::chrono::milliseconds between{20};

// The user's runtime folder, if there is one.
std::optional<std::filesystem::path> runtimeFolder() {
    const char* const set = std::getenv("XDG_RUNTIME_DIR");
    if (set == nullptr || set[0] != '/') return std::nullopt;
    struct stat status {};
    if (stat(set, &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != geteuid())
        return std::nullopt;
    return set;
}

int openFolder(const std::filesystem::path& folder) {
    std::error_code error;
    if (std::filesystem::create_directories(folder, error))
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
    return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

// The same for every program with these preferences, even if the folder is deleted meanwhile.
std::string nameFor(const std::filesystem::path& preferences) {
    std::error_code error;
    std::filesystem::path path = std::filesystem::weakly_canonical(preferences, error);
    if (error) path = preferences;
    std::uint64_t hash = 0xcbf29ce484222325; // FNV-1a
    for (const char byte : path.native())
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    std::array<char, 16> digits{};
    const char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), hash, 16).ptr;
    return "brevane-" + std::string(std::string_view(digits.data(), end));
}

} // namespace

SingleInstance::SingleInstance(const std::filesystem::path& preferences)
    : folder_(openFolder(runtimeFolder().value_or(preferences))), name_(nameFor(preferences)),
      lock_(openat(folder_.get(), (name_ + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)),
      // The folder's own path may be longer than a socket's address.
      socketPath_("/proc/self/fd/" + std::to_string(folder_.get()) + "/" + name_) {}

SingleInstance::~SingleInstance() {
    if (doorbell_) unlink(socketPath_.c_str());
}

SingleInstance::Claim SingleInstance::claim(const std::string& token) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    DoorbellSocket caller;
    bool asked = false;
    do {
        // Tried each time, since the instance with the lock may be about to exit.
        if (flock(lock_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
            unlink(socketPath_.c_str()); // left behind by an instance that crashed
            doorbell_ = std::make_unique<DoorbellSocket>(socketPath_);
            return Claim::first;
        }
        // Fails while the other instance has the lock but has not bound its socket yet.
        asked = asked || caller.ring(socketPath_, token);
        if (caller.waitForRing(between)) return Claim::otherAsked;
    } while (std::chrono::steady_clock::now() < deadline);
    return Claim::noAnswer;
}

void SingleInstance::onRaise(std::function<void(const std::string& token)> raise) {
    if (!doorbell_ || doorbell_->descriptor() < 0) return;
    notifier_ = std::make_unique<QSocketNotifier>(doorbell_->descriptor(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this, raise = std::move(raise)] {
                         std::string token;
                         while (auto ring = doorbell_->nextRing()) {
                             doorbell_->ring(ring->caller);
                             token = std::move(ring->message);
                         }
                         raise(token);
                     });
}

} // namespace brevane
