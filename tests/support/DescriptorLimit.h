// SPDX-License-Identifier: MIT
#pragma once

#include <sys/resource.h>

namespace brevane::test {

/// Sets RLIMIT_NOFILE for its lifetime: no descriptor can be opened with this number or above.
class DescriptorLimit {
public:
    explicit DescriptorLimit(int number) {
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit tight{.rlim_cur = static_cast<rlim_t>(number), .rlim_max = before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &tight);
    }
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &before); }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

private:
    rlimit before{};
};

} // namespace brevane::test
