// SPDX-License-Identifier: MIT
#include "LastWords.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace brevane::test {
namespace {

TEST(LastWords, AreOneLineAlsoIfSeveralThreadsFailAtOnce) {
    const auto fail = [] {
        installLastWords();
        constexpr int count = 16;
        std::latch all(count);
        std::vector<std::thread> threads;
        for (int i = 0; i < count; ++i) {
            threads.emplace_back([&all] {
                all.arrive_and_wait();
                throw std::runtime_error("no more");
            });
        }
        for (std::thread& thread : threads)
            thread.join();
    };
    EXPECT_EXIT(fail(), ::testing::ExitedWithCode(EXIT_FAILURE),
                ::testing::Eq(std::string("brevane: no more\n")));
}

} // namespace
} // namespace brevane::test
