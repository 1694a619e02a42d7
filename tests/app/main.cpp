// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "Theme.h"

#include <QApplication>

#include <cstdlib>

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    const brevane::Theme theme(brevane::Theme::Scheme::light);
    return RUN_ALL_TESTS();
}
