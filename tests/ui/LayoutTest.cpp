// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include "AddServeView.h"
#include "EmptyState.h"
#include "Label.h"
#include "ModeHeader.h"
#include "SegmentedControl.h"
#include "StatusHeader.h"
#include "SymbolView.h"
#include "TailscaleIcon.h"
#include "Theme.h"

#include <QImage>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QTextEdit>

#include <algorithm>
#include <tuple>

namespace brevane::test {
namespace {

class LayoutTest : public WindowTest {
protected:
    void TearDown() override {
        view.reset();
        QApplication::setFont(usual);
    }

    QRect place(const QWidget& part, const QWidget& whole) {
        return {part.mapTo(&whole, QPoint()), part.size()};
    }

    const QFont usual = QApplication::font();
};

class PopUpLookTest : public LayoutTest {
protected:
    // Expects one edge colour on all four sides, and transparent corners.
    static void expectRoundAndEdged(QWidget& popUp) {
        const QImage image = popUp.grab().toImage().convertToFormat(QImage::Format_ARGB32);
        const int right = image.width() - 1;
        const int bottom = image.height() - 1;
        for (const QPoint corner :
             {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom)})
            EXPECT_EQ(image.pixelColor(corner).alpha(), 0);
        // Without a compositing manager an X server paints what is transparent black.
        EXPECT_FALSE(popUp.mask().isEmpty());
        for (int y = 0; y <= bottom; ++y)
            for (int x = 0; x <= right; ++x) {
                const int alpha = image.pixelColor(x, y).alpha();
                if (alpha > 0 && alpha < 255) continue;
                ASSERT_EQ(popUp.mask().contains(QPoint(x, y)), alpha == 255) << x << " " << y;
            }
        const QColor edge = image.pixelColor(image.width() / 2, 0);
        EXPECT_NE(edge, image.pixelColor(image.width() / 2, 2));
        EXPECT_EQ(image.pixelColor(image.width() / 2, bottom), edge);
        for (int y = 10; y < image.height() - 10; ++y) {
            ASSERT_EQ(image.pixelColor(0, y), edge) << y;
            ASSERT_EQ(image.pixelColor(right, y), edge) << y;
        }
    }
};

TEST_F(PopUpLookTest, AMenuIsRoundAndHasAnEdgeOnAllSides) {
    press("Reset Shares");
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    menu->setActiveAction(menu->actions()[1]);
    settle();
    expectRoundAndEdged(*menu);
    menu->close();
}

TEST_F(PopUpLookTest, AListOfChoicesIsRoundAndHasAnEdgeOnAllSides) {
    auto* picker = find<PopUp>("Source Type");
    picker->showPopup();
    settle();
    QWidget* popUp = QApplication::activePopupWidget();
    ASSERT_NE(popUp, nullptr);
    expectRoundAndEdged(*popUp);
    const QImage image = popUp->grab().toImage();
    EXPECT_EQ(image.pixelColor(image.width() - 12, image.height() - 20), theme().colors().popup);
    picker->hidePopup();
}

TEST_F(LayoutTest, BothHeadersKeepFourteenOnAllSidesInAWideFont) {
    for (const char* family : {"DejaVu Sans", "Inter"}) {
        QApplication::setFont(QFont(family, 10));
        settle();
        auto* left = view->findChild<StatusHeader*>();
        auto* right = view->findChild<ModeHeader*>();
        const auto* picker = right->findChild<SegmentedControl*>();
        const auto* caption = right->findChild<Label*>();
        EXPECT_EQ(place(*picker, *right).top(), 14) << family;
        EXPECT_EQ(place(*caption, *right).bottom() + 1, right->height() - 14) << family;
        EXPECT_EQ(left->height(), right->height());
        EXPECT_EQ(place(*left->findChild<TailscaleIcon*>(), *left).left(), 14);
        EXPECT_EQ(place(*button(refreshButton), *left).right() + 1, left->width() - 14);
    }
}

TEST_F(LayoutTest, TheListGivesWayLast) {
    const auto* split = view->findChild<QSplitter*>();
    const auto widths = [&](int window) {
        view->resize(window, 474);
        settle();
        return std::pair(split->widget(0)->width(), split->widget(1)->width());
    };
    EXPECT_EQ(widths(800), std::pair(459, 340));
    EXPECT_EQ(widths(741), std::pair(400, 340));
    EXPECT_EQ(widths(700), std::pair(400, 299));
    EXPECT_EQ(widths(640), std::pair(359, 280));
    EXPECT_EQ(widths(800), std::pair(459, 340));
}

TEST_F(LayoutTest, AtTheFirstSizeTheFormIsShownWhole) {
    QApplication::setFont(QFont("Inter", 10));
    service->dnsName.set("heron.alder-finch.ts.net");
    for (const char* mode : {"Serve", "Funnel"}) {
        press(mode);
        for (const auto& [type, field, source] :
             {std::tuple(SourceType::port, "Port or URL", "http://127.0.0.1:3000/api"),
              std::tuple(SourceType::file, "File Path", "/home/mira/Papers/report.pdf"),
              std::tuple(SourceType::directory, "Directory Path", "/home/mira/site/"),
              std::tuple(SourceType::httpsInsecure, "Local HTTPS Port", "8443"),
              std::tuple(SourceType::text, "Text Content", "Hello, World!"),
              std::tuple(SourceType::tcpForward, "Local Port", "22")}) {
            // Three lines of text or preview more than a funnel's longer description leaves room
            // for.
            if (mode == std::string("Funnel") &&
                (type == SourceType::file || type == SourceType::text))
                continue;
            const auto index = std::ranges::find(allSourceTypes, type) - allSourceTypes.begin();
            find<PopUp>("Source Type")->setCurrentIndex(static_cast<int>(index));
            find<QLineEdit>(field)->setText(source);
            settle();
            const auto* area = view->findChild<AddServeView*>()->findChild<QScrollArea*>();
            EXPECT_EQ(area->verticalScrollBar()->maximum(), 0) << mode << " " << field;
        }
    }
}

TEST_F(LayoutTest, TheEmptyStateStandsInTheMiddleOfItsPlace) {
    publish({});
    const auto* empty = view->findChild<EmptyState*>();
    ASSERT_TRUE(empty->isVisible());
    QRect content;
    for (const auto* part : empty->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        content |= part->geometry();
    EXPECT_NEAR(content.center().y(), empty->rect().center().y(), 1);
    EXPECT_NEAR(content.center().x(), empty->rect().center().x(), 1);
}

TEST_F(LayoutTest, SymbolsAreDrawnAtTheResolutionOfWhatTheyArePaintedOn) {
    SymbolView symbol(QStringLiteral("globe"), &Colors::text, 32);
    QImage image(symbol.size() * 2, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(2);
    image.fill(Qt::transparent);
    symbol.render(&image, {}, {}, QWidget::DrawChildren);
    int finer = 0;
    for (int y = 0; y + 1 < image.height(); y += 2)
        for (int x = 0; x + 1 < image.width(); x += 2)
            if (image.pixel(x, y) != image.pixel(x + 1, y + 1)) ++finer;
    EXPECT_GT(finer, 20);
}

TEST_F(LayoutTest, TheFallbackIconsSymbolStandsInItsMiddle) {
    QIcon::setThemeName("no-such-theme");
    TailscaleIcon icon(30);
    QImage image(icon.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    icon.render(&image, {}, {}, QWidget::DrawChildren);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 15; ++x)
            EXPECT_NEAR(qRed(image.pixel(x, y)), qRed(image.pixel(29 - x, y)), 8) << x << " " << y;
}

TEST_F(LayoutTest, TheOrangeOfFunnelsIsOrange) {
    for (const Colors* colors : {&Colors::light(), &Colors::dark()})
        for (const ColorRole role : {&Colors::orange, &Colors::orangeFill}) {
            const QColor color = colors->*role;
            // Darker than this, the same hue is called brown.
            EXPECT_GE(color.value(), 200) << color.name().toStdString();
            EXPECT_GE(color.hsvHue(), 18);
            EXPECT_LE(color.hsvHue(), 40);
        }
}

class FormErrorTest : public LayoutTest {
protected:
    const QWidget* errorText() {
        for (const auto* text : view->findChild<AddServeView*>()->findChildren<QTextEdit*>())
            if (text->isVisible() && text->accessibleName() == "Error") return text;
        return nullptr;
    }
    // Starts a share that tailscale refuses, in a window of this height. Returns whether the error
    // was shown.
    bool failsToStartAt(int height) {
        view->resize(640, height);
        changesDo("echo the port is taken by something else; exit 1");
        find<QLineEdit>("Port or URL")->setText("3000");
        settle();
        press("Start Serve");
        const bool hasFailed = until([&] { return errorText() != nullptr; });
        settle();
        return hasFailed;
    }
    QRect startButton() { return place(*button("Start Serve"), *view); }
};

TEST_F(FormErrorTest, IsInSightWhenItAppearsWhateverTheHeight) {
    for (const int height : {474, 520, 614, 900}) {
        ASSERT_TRUE(failsToStartAt(height));
        EXPECT_EQ(errorText()->visibleRegion().boundingRect(), errorText()->rect()) << height;
        find<QLineEdit>("Port or URL")->clear();
    }
}

TEST_F(FormErrorTest, AToastNeitherHidesItNorMovesTheStartButton) {
    for (const int height : {474, 614}) {
        ASSERT_TRUE(failsToStartAt(height));
        const QRect before = startButton();
        view->showToast("URL copied!");
        settle();
        EXPECT_EQ(startButton(), before);
        EXPECT_EQ(errorText()->visibleRegion().boundingRect(), errorText()->rect()) << height;
        EXPECT_EQ(button("Start Serve")->visibleRegion().boundingRect(),
                  button("Start Serve")->rect());
        ASSERT_TRUE(until([&] { return !shows("URL copied!"); }));
        settle();
        EXPECT_EQ(startButton(), before);
    }
}

} // namespace
} // namespace brevane::test
