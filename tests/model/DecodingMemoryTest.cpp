// SPDX-License-Identifier: MIT
#include "TailscaleStatusJSON.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

// Counts the bytes that this program allocates. Not inlined, or the compiler would see operator new
// paired with free().
namespace {
std::size_t allocatedBytes = 0;
}

[[gnu::noinline]] void* operator new(std::size_t size) {
    allocatedBytes += size;
    if (void* memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

TEST(DecodeTailscaleStatus, AllocatesNoMoreForTenThousandPeersThanForOne) {
    const auto allocatedFor = [](int peers) {
        std::string document = R"({"BackendState":"Running","Self":{"HostName":"n"},"Peer":{)";
        for (int i = 0; i < peers; ++i)
            document.append(i ? ",\"" : "\"")
                .append(std::to_string(i))
                .append(
                    R"(":{"HostName":"a name too long to be stored in place","Tags":[1,{"a":null}]})");
        document += "}}";
        const std::size_t before = allocatedBytes;
        EXPECT_TRUE(brevane::decodeTailscaleStatus(document));
        return allocatedBytes - before;
    };
    EXPECT_EQ(allocatedFor(10'000), allocatedFor(1));
    EXPECT_GT(allocatedFor(1), 0U);
}
