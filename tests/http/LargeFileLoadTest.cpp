// SPDX-License-Identifier: MIT
#include "LargeFile.h"
#include "TemporaryFolder.h"
#ifdef __linux__
#include "WithoutSystemCall.h"
#endif

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace brevane::test {
namespace {

class BringLargeFile : public ::testing::Test {
protected:
    BringLargeFile() { writeFile(path_, std::string(size, 'l')); }

    // The file with a reported size of `byteCount`.
    [[nodiscard]] LargeFile file(std::size_t byteCount) const {
        return {Descriptor(::open(path_.c_str(), O_RDWR | O_CLOEXEC)), byteCount};
    }

    static constexpr std::size_t size = 3000000;
    TemporaryFolder folder_;
    const std::filesystem::path path_ = folder_ / "large";
};

TEST_F(BringLargeFile, LeavesItInTheCache) {
    const LargeFile whole = file(size);
    ASSERT_TRUE(whole.bring(0, size));
    EXPECT_TRUE(whole.isCached(0, size));
    EXPECT_TRUE(whole.isCached(size - 1, 1));
    EXPECT_TRUE(whole.isCached(4097, 123456));
}

TEST_F(BringLargeFile, FailsWhereTheFileWasCutShort) {
    const LargeFile longer = file(size + 1000000);
    EXPECT_FALSE(longer.bring(0, size + 1000000));
    EXPECT_TRUE(longer.isCutShort());
    EXPECT_FALSE(file(size).isCutShort());
}

#ifdef __linux__
void evict(const LargeFile& file) {
    ASSERT_EQ(::fsync(file.descriptor()), 0);
    ASSERT_EQ(::posix_fadvise(file.descriptor(), 0, 0, POSIX_FADV_DONTNEED), 0);
}

TEST_F(BringLargeFile, BringsBackWhatHasLeftTheCache) {
    const LargeFile whole = file(size);
    evict(whole);
    if (whole.isCached(0, size)) GTEST_SKIP() << "this file system has no other place";
    ASSERT_TRUE(whole.bring(1000000, 500000));
    EXPECT_TRUE(whole.isCached(1000000, 500000));
}

TEST_F(BringLargeFile, IsSeenInTheCacheBeforeLinux6_5Too) {
    constexpr std::uint32_t cachestat = 451;
    const LargeFile whole = file(size);
    evict(whole);
    bool isSeen = false;
    runWithoutSystemCall(cachestat, [&] { isSeen = whole.isCached(0, size); });
    // Looking may start readahead, so what was evicted can be back by now.
    EXPECT_TRUE(!isSeen || whole.isCached(0, size));
    runWithoutSystemCall(cachestat, [&] {
        ASSERT_TRUE(whole.bring(0, size));
        EXPECT_TRUE(whole.isCached(0, size));
        EXPECT_TRUE(whole.isCached(size - 1, 1));
    });
}
#endif

} // namespace
} // namespace brevane::test
