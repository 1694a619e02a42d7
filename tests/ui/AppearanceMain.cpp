// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QGuiApplication>

// Creates no theme, which would connect to the bus before the test has started one.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
