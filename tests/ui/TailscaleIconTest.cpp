// SPDX-License-Identifier: MIT
#include "TailscaleIcon.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QTemporaryDir>

#include <algorithm>

namespace brevane::test {
namespace {

QImage pictureOf(int size) {
    TailscaleIcon icon(size);
    EXPECT_EQ(icon.size(), QSize(size, size));
    QImage image(icon.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    icon.render(&image, {}, {}, QWidget::DrawChildren);
    return image;
}

TEST(TailscaleIcon, WithoutTheApplicationAFallbackIsDrawn) {
    QIcon::setThemeName("no-such-theme");
    ASSERT_TRUE(TailscaleIcon::installed().isNull());
    const QImage image = pictureOf(100);
    const QColor ground(0, 107, 191);
    // With a corner radius of 22 of 100 pixels, only the corner itself is transparent.
    EXPECT_EQ(image.pixelColor(1, 1).alpha(), 0);
    EXPECT_EQ(image.pixelColor(5, 5).alpha(), 0);
    EXPECT_EQ(image.pixelColor(50, 2), ground);
    EXPECT_EQ(image.pixelColor(8, 8), ground);
    // The symbol's dot in the centre.
    EXPECT_EQ(image.pixelColor(50, 50), QColor(Qt::white));
}

#ifndef __APPLE__
TEST(TailscaleIcon, AThemesIconOfThatNameIsDrawn) {
    const QTemporaryDir themes;
    const QString apps = themes.filePath("some-theme/48x48/apps");
    ASSERT_TRUE(QDir().mkpath(apps));
    QFile index(themes.filePath("some-theme/index.theme"));
    ASSERT_TRUE(index.open(QIODevice::WriteOnly));
    index.write("[Icon Theme]\nName=Some\nComment=Some\nDirectories=48x48/apps\n"
                "[48x48/apps]\nSize=48\nType=Fixed\nContext=Applications\n");
    index.close();
    QImage picture(48, 48, QImage::Format_RGB32);
    picture.fill(Qt::magenta);
    ASSERT_TRUE(picture.save(apps + "/tailscale.png"));
    const QStringList folders = QIcon::themeSearchPaths();
    QIcon::setThemeSearchPaths({themes.path()});
    QIcon::setThemeName("some-theme");
    EXPECT_EQ(pictureOf(48).pixelColor(1, 1), QColor(Qt::magenta));
    QIcon::setThemeSearchPaths(folders);
}
#endif

TEST(TailscaleIcon, TheFallbacksSymbolKeepsWithinTheMiddle) {
    const QImage image = pictureOf(100);
    int left = 100;
    int right = 0;
    for (int x = 0; x < 100; ++x)
        for (int y = 0; y < 100; ++y)
            if (image.pixelColor(x, y).red() > 128 && image.pixelColor(x, y).alpha() == 255) {
                left = std::min(left, x);
                right = std::max(right, x);
            }
    EXPECT_GT(left, 20);
    EXPECT_LT(right, 80);
    EXPECT_NEAR(left, 99 - right, 2);
}

} // namespace
} // namespace brevane::test
