// SPDX-License-Identifier: MIT
#include "QtMainQueue.h"

#include "SerialQueue.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

namespace brevane::test {
namespace {

TEST(QtMainQueue, RunsTasksInTheOrderOfPostingAndNeverBeforePostReturns) {
    QtMainQueue queue;
    std::vector<int> ran;
    queue.post([&] {
        ran.push_back(1);
        queue.post([&] {
            ran.push_back(4);
            QCoreApplication::exit();
        });
        ran.push_back(2);
    });
    queue.post([&] { ran.push_back(3); });
    EXPECT_TRUE(ran.empty());
    QCoreApplication::exec();
    EXPECT_EQ(ran, (std::vector{1, 2, 3, 4}));
}

TEST(QtMainQueue, RunsTasksOfOtherThreadsOnTheMainThreadInTheirOrder) {
    QtMainQueue main;
    SerialQueue background("posting");
    std::vector<int> ran;
    QThread* const mainThread = QThread::currentThread();
    for (int i = 0; i < 100; ++i)
        background.post([&, i] {
            main.post([&, i] {
                EXPECT_EQ(QThread::currentThread(), mainThread);
                ran.push_back(i);
                if (i == 99) QCoreApplication::exit();
            });
        });
    QCoreApplication::exec();
    ASSERT_EQ(ran.size(), 100U);
    EXPECT_TRUE(std::ranges::is_sorted(ran));
}

TEST(QtMainQueue, AfterTheEventLoopHasEndedNothingRunsAndNothingIsKept) {
    QtMainQueue queue;
    auto waiting = std::make_shared<int>();
    auto late = std::make_shared<int>();
    bool ran = false;
    queue.post([&] {
        queue.post([&, waiting] { ran = true; });
        QCoreApplication::exit();
    });
    QCoreApplication::exec();
    queue.post([&, late] { ran = true; });
    EXPECT_EQ(waiting.use_count(), 1);
    EXPECT_EQ(late.use_count(), 1);
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}

TEST(QtMainQueue, RunsADelayedTaskOnceItsTimeHasCome) {
    QtMainQueue queue;
    const auto start = std::chrono::steady_clock::now();
    queue.postAfter(std::chrono::milliseconds(20), [] { QCoreApplication::exit(); });
    QCoreApplication::exec();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(19));
}

TEST(QtMainQueue, ADelayedTaskEndsWithTheQueue) {
    bool ran = false;
    {
        QtMainQueue queue;
        queue.postAfter(std::chrono::milliseconds(0), [&] { ran = true; });
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}

TEST(QtMainQueue, WhatStillWaitsAtItsEndIsDropped) {
    auto waiting = std::make_shared<int>();
    bool ran = false;
    {
        QtMainQueue queue;
        queue.post([&, waiting] { ran = true; });
    }
    EXPECT_EQ(waiting.use_count(), 1);
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}

} // namespace
} // namespace brevane::test
