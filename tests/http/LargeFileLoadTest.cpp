// SPDX-License-Identifier: MIT
#include "LargeFile.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>

namespace brevane {
namespace {

class LoadLargeFile : public ::testing::Test {
protected:
    LoadLargeFile() { test::writeFile(path, content); }

    // The file, said to have `size` bytes.
    [[nodiscard]] LargeFile file(std::size_t size) const {
        return {Descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)), size};
    }

    test::TemporaryFolder folder;
    const std::filesystem::path path = folder / "large";
    const std::string content = std::string(3000000, 'l');
    std::atomic<bool> ending = false;
};

TEST_F(LoadLargeFile, BringsAllOfItIntoMemory) {
    LargeFile whole = file(content.size());
    EXPECT_FALSE(whole.isLoaded());
    ASSERT_TRUE(whole.load(ending));
    EXPECT_TRUE(whole.isLoaded());
    EXPECT_TRUE(whole.bytes() == content);
}

TEST_F(LoadLargeFile, FailsWhereTheFileWasCutShortMeanwhile) {
    EXPECT_FALSE(file(content.size() + 1000000).load(ending));
}

TEST_F(LoadLargeFile, IsGivenUpWhenThePoolEnds) {
    ending = true;
    EXPECT_FALSE(file(content.size()).load(ending));
}

} // namespace
} // namespace brevane
