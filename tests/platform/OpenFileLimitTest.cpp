// SPDX-License-Identifier: MIT
#include "OpenFileLimit.h"

#include "ChildProgram.h"
#include "DescriptorLimit.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brevane::test {
namespace {

// In a forked process, since raising the limit cannot be undone.
TEST(OpenFileLimit, IsRaisedToTheHardOneForUsAndNotForChildren) {
    const DescriptorLimit before(100);
    const pid_t program = fork();
    if (program == 0) {
        raiseOpenFileLimit();
        rlimit own{};
        getrlimit(RLIMIT_NOFILE, &own);
        const bool raised = own.rlim_cur == own.rlim_max && own.rlim_max > 100;
        const bool restored = run(child({"descriptor-limit"})).standardOutput == "100";
        _exit((raised ? 1 : 0) + (restored ? 2 : 0));
    }
    int status = 0;
    ASSERT_EQ(waitpid(program, &status, 0), program);
    EXPECT_EQ(WEXITSTATUS(status), 3);
}

} // namespace
} // namespace brevane::test
