// SPDX-License-Identifier: MIT
#include "Label.h"

#include "QtText.h"

#include <gtest/gtest.h>

#include <QApplication>

namespace brevane::test {
namespace {

const QString words = "Tailnet only: private to the people who share a network with this machine";

class WrappedLabel : public testing::Test {
protected:
    WrappedLabel() { label.setWordWrap(true); }

    // The height that a new label returns, which has cached nothing.
    int freshHeight(const QString& text, int width) {
        Label fresh(TextStyle::caption, &Colors::text, text);
        fresh.setFont(label.font());
        fresh.setWordWrap(true);
        return fresh.heightForWidth(width);
    }

    Label label{TextStyle::caption, &Colors::text, words};
};

TEST_F(WrappedLabel, IsHigherWhereItIsNarrower) {
    const int line = label.fontMetrics().height();
    EXPECT_EQ(label.heightForWidth(2000), line);
    EXPECT_GE(label.heightForWidth(100), 3 * line);
    EXPECT_EQ(label.heightForWidth(2000), line);
}

TEST_F(WrappedLabel, HasTheHeightOfANewText) {
    ASSERT_GT(label.heightForWidth(100), freshHeight("short", 100));
    label.setPlainText("short");
    EXPECT_EQ(label.heightForWidth(100), freshHeight("short", 100));
}

TEST_F(WrappedLabel, HasTheHeightOfANewFont) {
    const int before = label.heightForWidth(100);
    QFont larger = label.font();
    larger.setPixelSize(2 * larger.pixelSize());
    label.setFont(larger);
    EXPECT_GT(label.heightForWidth(100), before);
    EXPECT_EQ(label.heightForWidth(100), freshHeight(words, 100));
}

TEST(OnOneLine, ShowsBeginningAndEndOfATextLongerThanAnyWindow) {
    const QString shown = onOneLine("begin\n" + QString(1'000'000, 'x') + "\nend");
    EXPECT_LT(shown.size(), 5000);
    EXPECT_TRUE(shown.startsWith("begin x"));
    EXPECT_TRUE(shown.endsWith("x end"));
}

} // namespace
} // namespace brevane::test
