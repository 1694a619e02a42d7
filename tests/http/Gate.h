// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/fanotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <system_error>

namespace brevane::test {

/// Blocks everyone who opens or reads one file until the gate opens, like a file system that has
/// lost its disk or its network. Uses permission events of fanotify(7).
class Gate {
public:
    enum class Held { openings, readings };

    [[nodiscard]] static bool isAllowed() {
        return Descriptor(::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC, O_RDONLY)).isOpen();
    }

    Gate(const std::filesystem::path& file, Held held)
        : group_(::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC | FAN_NONBLOCK,
                                 O_RDONLY | O_CLOEXEC)) {
        const std::uint64_t mask = held == Held::openings ? FAN_OPEN_PERM : FAN_ACCESS_PERM;
        if (::fanotify_mark(group_.get(), FAN_MARK_ADD, mask, AT_FDCWD, file.c_str()) != 0)
            throw std::system_error(errno, std::generic_category(), "fanotify_mark");
    }
    ~Gate() { open(); }
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    /// Blocks until at least one caller is held.
    void waitForOne() const {
        pollfd events{.fd = group_.get(), .events = POLLIN, .revents = 0};
        while (::poll(&events, 1, -1) < 0 && errno == EINTR) {
        }
    }

    /// Lets all callers held go on, or fails their calls if `refused` is set. Returns how many
    /// there were.
    std::size_t letHeldGoOn(bool refused = false) {
        std::array<fanotify_event_metadata, 64> events{};
        std::size_t count = 0;
        for (;;) {
            auto size = ::read(group_.get(), events.data(), sizeof events);
            if (size <= 0) return count;
            for (auto* event = events.data(); FAN_EVENT_OK(event, size);
                 event = FAN_EVENT_NEXT(event, size)) {
                const fanotify_response response{
                    .fd = event->fd,
                    .response = static_cast<__u32>(refused ? FAN_DENY : FAN_ALLOW)};
                if (::write(group_.get(), &response, sizeof response) > 0) ++count;
                ::close(event->fd);
            }
        }
    }

    /// Lets all callers held go on and holds no more.
    void open() { group_.close(); }

private:
    Descriptor group_; // Closing it allows all pending events.
};

} // namespace brevane::test
