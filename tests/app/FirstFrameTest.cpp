// SPDX-License-Identifier: MIT
#include "FirstFrame.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <memory>

namespace brevane::test {
namespace {

using namespace std::chrono_literals;

class PaintCounter : public QWidget {
public:
    void paintEvent(QPaintEvent*) override { ++paints; }
    int paints = 0;
};

TEST(FirstFrame, IsThereWhenTheActionIsCalledOnce) {
    PaintCounter window;
    int calls = 0;
    int paintsAtCall = 0;
    afterFirstFrame(window, 1h, [&] {
        ++calls;
        paintsAtCall = window.paints;
    });
    window.show();
    EXPECT_EQ(calls, 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return calls > 0; }));
    EXPECT_EQ(paintsAtCall, 1);

    window.repaint();
    QCoreApplication::processEvents();
    EXPECT_EQ(window.paints, 2);
    EXPECT_EQ(calls, 1);
}

TEST(FirstFrame, IsNotWaitedForWithoutEnd) {
    PaintCounter neverShown;
    int calls = 0;
    afterFirstFrame(neverShown, 1ms, [&] { ++calls; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return calls > 0; }));
    EXPECT_EQ(neverShown.paints, 0);

    neverShown.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return neverShown.paints > 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, 1);
}

TEST(FirstFrame, OfAWindowThatHasGoneCallsNothing) {
    auto window = std::make_unique<PaintCounter>();
    int calls = 0;
    afterFirstFrame(*window, 1ms, [&] { ++calls; });
    window.reset();
    bool later = false;
    QTimer::singleShot(10, [&] { later = true; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return later; }));
    EXPECT_EQ(calls, 0);
}

} // namespace
} // namespace brevane::test
