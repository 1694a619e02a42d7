// SPDX-License-Identifier: MIT
#include "SingleInstance.h"

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <atomic>
#include <thread>

namespace brevane {

using Claim = SingleInstance::Claim;

class SingleInstanceTest : public testing::Test {
protected:
    [[nodiscard]] std::filesystem::path folder() const { return parent / "config" / "brevane"; }

    /// What another program gets on `path` while this one's event loop runs.
    static Claim claimMeanwhile(const std::filesystem::path& path) {
        std::atomic<bool> done = false;
        Claim claim = Claim::noAnswer;
        std::thread other([&] {
            claim = SingleInstance(path).claim();
            done = true;
        });
        while (!done)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        other.join();
        return claim;
    }

    test::TemporaryFolder parent;
};

TEST_F(SingleInstanceTest, TheFirstMakesTheFolderForItsOwnerAloneAndWritesNothingIntoIt) {
    SingleInstance instance(folder());
    EXPECT_EQ(instance.claim(), Claim::first);
    EXPECT_TRUE(std::filesystem::is_empty(folder()));
    EXPECT_EQ(std::filesystem::status(folder()).permissions(), std::filesystem::perms::owner_all);
}

TEST_F(SingleInstanceTest, ASecondOneRaisesTheFirst) {
    SingleInstance first(folder());
    ASSERT_EQ(first.claim(), Claim::first);
    int raised = 0;
    first.onRaise([&] { ++raised; });

    EXPECT_EQ(claimMeanwhile(folder()), Claim::otherAsked);
    EXPECT_EQ(raised, 1);
}

TEST_F(SingleInstanceTest, AnotherFolderIsAnotherInstance) {
    SingleInstance first(folder());
    ASSERT_EQ(first.claim(), Claim::first);
    SingleInstance elsewhere(parent / "other");
    EXPECT_EQ(elsewhere.claim(), Claim::first);
}

TEST_F(SingleInstanceTest, TheSameFolderByAnotherPathIsTheSameInstance) {
    SingleInstance first(folder());
    ASSERT_EQ(first.claim(), Claim::first);
    first.onRaise([] {});
    std::filesystem::create_directory_symlink(parent / "config", parent / "link");
    EXPECT_EQ(claimMeanwhile(parent / "link" / "brevane"), Claim::otherAsked);
}

TEST_F(SingleInstanceTest, OneThatStartsWhileTheFirstEndsTakesItsPlace) {
    auto first = std::make_unique<SingleInstance>(folder());
    ASSERT_EQ(first->claim(), Claim::first);
    std::atomic<bool> started = false;
    Claim second = Claim::noAnswer;
    std::thread other([&] {
        SingleInstance instance(folder());
        started = true;
        second = instance.claim();
    });
    while (!started)
        std::this_thread::yield();
    first.reset();
    other.join();
    EXPECT_EQ(second, Claim::first);
}

TEST_F(SingleInstanceTest, OneThatNeverAnswersIsLeftAloneAfterAWhile) {
    SingleInstance first(folder());
    ASSERT_EQ(first.claim(), Claim::first);
    EXPECT_EQ(SingleInstance(folder()).claim(), Claim::otherAsked);
    int raised = 0;
    first.onRaise([&] { ++raised; });
    QCoreApplication::processEvents();
    EXPECT_EQ(raised, 1);
}

TEST_F(SingleInstanceTest, AFolderThatCannotBeMadeKeepsNobodyOut) {
    SingleInstance instance("/dev/null/brevane");
    EXPECT_EQ(instance.claim(), Claim::first);
}

} // namespace brevane
