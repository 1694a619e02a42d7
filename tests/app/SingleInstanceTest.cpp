// SPDX-License-Identifier: MIT
#include "SingleInstance.h"

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

namespace brevane::test {
namespace {

using Claim = SingleInstance::Claim;

class SingleInstanceTest : public testing::Test {
protected:
    SingleInstanceTest() {
        std::filesystem::create_directory(parent / "runtime");
        setenv("XDG_RUNTIME_DIR", (parent / "runtime").c_str(), 1);
    }
    ~SingleInstanceTest() override { unsetenv("XDG_RUNTIME_DIR"); }

    [[nodiscard]] std::filesystem::path folder() const { return parent / "config" / "brevane"; }

    /// What another program gets on `path` while this one's event loop runs.
    static Claim claimMeanwhile(const std::filesystem::path& path, const std::string& token = {}) {
        std::atomic<bool> done = false;
        Claim claim = Claim::noAnswer;
        std::thread other([&] {
            claim = SingleInstance(path).claim(token);
            done = true;
        });
        while (!done)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        other.join();
        return claim;
    }

    TemporaryFolder parent;
};

TEST_F(SingleInstanceTest, WithoutARuntimeFolderTheFirstMakesTheFolderForItsOwnerAlone) {
    unsetenv("XDG_RUNTIME_DIR");
    SingleInstance instance(folder());
    EXPECT_EQ(instance.claim(), Claim::first);
    EXPECT_EQ(std::filesystem::status(folder()).permissions(), std::filesystem::perms::owner_all);
    instance.onRaise([](const std::string&) {});
    EXPECT_EQ(claimMeanwhile(folder()), Claim::otherAsked);
}

TEST_F(SingleInstanceTest, WithARuntimeFolderNothingIsWrittenElsewhere) {
    SingleInstance instance(folder());
    EXPECT_EQ(instance.claim(), Claim::first);
    EXPECT_FALSE(std::filesystem::exists(folder()));
}

TEST_F(SingleInstanceTest, WhatIsNoFolderOfOursIsNoRuntimeFolder) {
    const std::string runtime = parent / "runtime";
    const std::string foreign = chown(runtime.c_str(), 54'321, gid_t(-1)) == 0 ? runtime : "/";
    for (const std::string& set : {std::string("run"), runtime + "/not-there", foreign}) {
        setenv("XDG_RUNTIME_DIR", set.c_str(), 1);
        SingleInstance instance(folder());
        EXPECT_EQ(instance.claim(), Claim::first);
        EXPECT_FALSE(std::filesystem::is_empty(folder())) << set;
        std::filesystem::remove_all(folder());
    }
}

TEST_F(SingleInstanceTest, ARuntimeFolderOfAnyLengthWillDo) {
    const auto deep = parent / std::string(100, 'a') / std::string(100, 'b');
    std::filesystem::create_directories(deep);
    setenv("XDG_RUNTIME_DIR", deep.c_str(), 1);
    SingleInstance first(folder());
    ASSERT_EQ(first.claim(), Claim::first);
    first.onRaise([](const std::string&) {});
    EXPECT_EQ(claimMeanwhile(folder()), Claim::otherAsked);
}

TEST_F(SingleInstanceTest, WhatACrashedOneLeftBehindKeepsNobodyOut) {
    ASSERT_EQ(SingleInstance(folder()).claim(), Claim::first);
    const std::filesystem::path lock = *std::filesystem::directory_iterator(parent / "runtime");
    std::ofstream(lock.parent_path() / lock.stem()) << "in the socket's place";
    SingleInstance instance(folder());
    ASSERT_EQ(instance.claim(), Claim::first);
    instance.onRaise([](const std::string&) {});
    EXPECT_EQ(claimMeanwhile(folder()), Claim::otherAsked);
}

TEST_F(SingleInstanceTest, ASecondOneRaisesTheFirst) {
    SingleInstance first(folder());
    ASSERT_EQ(first.claim(), Claim::first);
    int raised = 0;
    first.onRaise([&](const std::string&) { ++raised; });

    EXPECT_EQ(claimMeanwhile(folder()), Claim::otherAsked);
    EXPECT_EQ(raised, 1);
}

TEST_F(SingleInstanceTest, ASecondOneHandsItsActivationTokenOver) {
    SingleInstance first(folder());
    ASSERT_EQ(first.claim("not for anyone"), Claim::first);
    std::string received;
    first.onRaise([&](const std::string& token) { received = token; });

    EXPECT_EQ(claimMeanwhile(folder(), "token-1"), Claim::otherAsked);
    EXPECT_EQ(received, "token-1");
    EXPECT_EQ(claimMeanwhile(folder()), Claim::otherAsked);
    EXPECT_EQ(received, "");
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
    first.onRaise([](const std::string&) {});
    std::filesystem::create_directory(parent / "config");
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
    EXPECT_EQ(SingleInstance(folder()).claim(), Claim::noAnswer);
    int raised = 0;
    first.onRaise([&](const std::string&) { ++raised; });
    QCoreApplication::processEvents();
    EXPECT_EQ(raised, 1);
}

TEST_F(SingleInstanceTest, AFolderThatCannotBeMadeKeepsNobodyOut) {
    unsetenv("XDG_RUNTIME_DIR");
    SingleInstance instance("/dev/null/brevane");
    EXPECT_EQ(instance.claim(), Claim::first);
}

} // namespace
} // namespace brevane::test
