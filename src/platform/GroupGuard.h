// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

namespace brevane {

/// Kills a process group of children when the calling thread ends before this does, also with the
/// whole process and by SIGKILL: a child that the shell has forked does not get the signal that the
/// shell gets at its parent's death. Used and destroyed on one thread. It is a process of its own
/// for as long as it lives, without which (none left, or not on Linux) nothing is guarded.
class GroupGuard {
public:
    /// `group` must not be reaped before this is destroyed, since its number could then be another
    /// one's.
    explicit GroupGuard(pid_t group);
    ~GroupGuard();
    GroupGuard(const GroupGuard&) = delete;
    GroupGuard& operator=(const GroupGuard&) = delete;

private:
    [[maybe_unused]] pid_t process_ = -1; ///< on Linux alone
};

} // namespace brevane
