// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QGuiApplication>

// Without a theme, which would ask for the bus before a test has made one.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
