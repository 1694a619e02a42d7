// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <thread>

namespace brevane::test {

/// Runs `task` on a thread where a system call fails with ENOSYS, as on kernels without it.
inline void runWithoutSystemCall(std::uint32_t number, const std::function<void()>& task) {
    std::array<sock_filter, 4> filter{{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog program{.len = filter.size(), .filter = filter.data()};
    std::thread([&] {
        ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
        ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
        task();
    }).join();
}

} // namespace brevane::test
