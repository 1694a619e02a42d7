// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

namespace brevane {

/// Sends SIGKILL to a process group if our process ends, even by SIGKILL, between the construction
/// and the destruction of this object: PR_SET_PDEATHSIG reaches the shell but not what the shell
/// has forked. Create and destroy on the same thread. Implemented as a forked process; if the fork
/// fails, and outside Linux, nothing is guarded.
class GroupGuard {
public:
    /// The leader of `group` must not be reaped before this is destroyed, since its process ID
    /// could then be reused.
    explicit GroupGuard(pid_t group);
    ~GroupGuard();
    GroupGuard(const GroupGuard&) = delete;
    GroupGuard& operator=(const GroupGuard&) = delete;

private:
    [[maybe_unused]] pid_t process_ = -1; ///< Linux only
};

} // namespace brevane
