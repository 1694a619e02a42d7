// SPDX-License-Identifier: MIT
#include "AboutView.h"

#include "AboutPanel.h"
#include "AppVersion.h"
#include "Color.h"
#include "CommandLine.h"
#include "Label.h"
#include "Maker.h"
#include "OrvaleLogo.h"
#include "QtText.h"
#include "WebLink.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QLayout>

namespace brevane::test {
namespace {

QStringList texts(const QWidget& view) {
    QStringList texts;
    for (const Label* label : view.findChildren<Label*>())
        texts.append(label->text());
    return texts;
}

/// Whether the picture has a pixel of exactly this colour.
bool shows(const QImage& picture, const QColor& color) {
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixelColor(x, y) == color) return true;
    return false;
}

/// Changes the application's font until the end of the scope.
class ScaledFont {
public:
    explicit ScaledFont(double factor) {
        QFont font = before;
        font.setPointSizeF(before.pointSizeF() * factor);
        QApplication::setFont(font);
    }
    ~ScaledFont() { QApplication::setFont(before); }

private:
    QFont before = QApplication::font();
};

class Browser : public QObject {
    Q_OBJECT
public:
    Browser() { QDesktopServices::setUrlHandler("https", this, "open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler("https"); }

    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl& url) { opened.append(url); }
};

TEST(AppVersion, IsTheOneOfTheBuild) {
    EXPECT_EQ(appVersion(shortVersionString()), toQString(buildVersion()));
}

TEST(AppVersion, WithoutAVersionOrWithOneThatIsNoTextItIsOnePointZero) {
    EXPECT_EQ(appVersion({}), "1.0");
    EXPECT_EQ(appVersion(7), "1.0");
    EXPECT_EQ(appVersion("2.5.1"), "2.5.1");
}

TEST(AboutView, NamesTheApplicationItsVersionAndItsMaker) {
    const AboutView view("2.5.1");
    EXPECT_EQ(texts(view), (QStringList{"Brevane", "Version 2.5.1", maker::credit}));
    EXPECT_EQ(view.findChild<WebLink*>()->text(), maker::webAddress);
    EXPECT_EQ(view.findChild<OrvaleLogo*>()->accessibleName(), "Orvale, Small tools, well made");
}

TEST(AboutView, TheBrandColourIsExact) {
    EXPECT_EQ(Color::orvale, QColor::fromRgb(208, 30, 30, 255));
    EXPECT_TRUE(shows(OrvaleLogo().grab().toImage(), Color::orvale));
}

TEST(AboutView, TheLinkOpensTheMakersWebSiteByPointerAndByKeyboard) {
    Browser browser;
    AboutView view("1.0");
    auto* link = view.findChild<WebLink*>();
    EXPECT_EQ(link->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(link->focusPolicy(), Qt::StrongFocus);
    link->click();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(link, &press);
    EXPECT_EQ(browser.opened, QList<QUrl>(2, QUrl(maker::webSite)));
}

TEST(AboutPanel, IsThreeHundredByThreeHundredAndTenAndTitled) {
    const AboutPanel panel;
    EXPECT_EQ(panel.size(), QSize(300, 310));
    EXPECT_EQ(panel.minimumSize(), panel.maximumSize());
    EXPECT_EQ(panel.windowTitle(), "About Brevane");
}

TEST(AboutPanel, GrowsWithTheFontSoThatNothingIsCut) {
    for (const double factor : {1.3, 2.0}) {
        const ScaledFont font(factor);
        const AboutPanel panel;
        panel.layout()->activate();
        for (const Label* label : panel.findChildren<Label*>()) {
            EXPECT_GE(label->width(), label->sizeHint().width()) << factor;
            EXPECT_GE(label->height(), label->sizeHint().height()) << factor;
        }
        EXPECT_EQ(panel.findChild<OrvaleLogo*>()->width(), 240);
    }
}

} // namespace
} // namespace brevane::test

#include "AboutViewTest.moc"
