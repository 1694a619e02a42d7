// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include "Label.h"
#include "SectionHeader.h"
#include "SelectableText.h"
#include "ShareAddress.h"
#include "Spinner.h"
#include "SymbolView.h"
#include "Theme.h"

#include <QAbstractItemView>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QScrollArea>
#include <QTextEdit>

#include <cmath>
#include <cstdlib>
#include <map>
#include <tuple>
#include <utility>

namespace brevane::test {
namespace {

class LookTest : public WindowTest {
protected:
    void SetUp() override {}
    void TearDown() override {
        view.reset();
        const_cast<Theme&>(theme()).setLook({});
        QApplication::setFont(usual);
    }

    // Fills the window with as much as it can show at once.
    void open(QSize size) {
        changesDo("exit 1");
        WindowTest::SetUp();
        view->resize(size);
        service->isConnected.set(true);
        service->dnsName.set("h.tail.ts.net");
        service->isLoading.set(true);
        publish({entry("/a"), entry("/b", true, 8443)});
        auto* picker = find<PopUp>("Source Type");
        picker->setCurrentIndex(picker->findText("HTTPS (self-signed)"));
        find<QLineEdit>("Local HTTPS Port")->setText("8443");
        settle();
        press("Start Serve");
        ASSERT_TRUE(until([&] { return shows("Command failed (exit 1)"); }));
        view->showToast("URL copied!");
        settle();
    }

    struct Text {
        std::string what;
        QWidget* widget;
        QRect where; ///< in the widget
    };
    // Every visible text.
    std::vector<Text> texts() {
        std::vector<Text> found;
        for (auto* widget : view->findChildren<QWidget*>()) {
            if (!widget->isVisible()) continue;
            const QRect inside = widget->rect().adjusted(4, 4, -4, -4);
            if (auto* address = qobject_cast<ShareAddress*>(widget)) {
                QRect text = address->rect();
                if (const QRect tag = address->tagRect(); !tag.isEmpty()) {
                    found.push_back({"PUBLIC", widget, tag.adjusted(1, 1, -1, -1)});
                    text.setRight(tag.left() - 6);
                }
                found.push_back({address->text().toStdString(), widget, text});
            } else if (auto* label = qobject_cast<Label*>(widget);
                       label && !label->text().isEmpty())
                found.push_back({label->text().toStdString(), widget, widget->rect()});
            else if (auto* edit = qobject_cast<QTextEdit*>(widget))
                found.push_back({edit->toPlainText().toStdString(), widget, widget->rect()});
            else if (auto* field = qobject_cast<QLineEdit*>(widget))
                found.push_back({"field " + field->text().toStdString(), widget, inside});
            else if (auto* box = qobject_cast<QCheckBox*>(widget))
                found.push_back({box->text().toStdString(), widget, inside.adjusted(20, 0, 0, 0)});
            else if (auto* popUp = qobject_cast<PopUp*>(widget))
                found.push_back(
                    {popUp->currentText().toStdString(), widget, inside.adjusted(0, 0, -28, 0)});
            else if (auto* push = qobject_cast<QAbstractButton*>(widget);
                     push && !push->text().isEmpty())
                found.push_back({push->text().toStdString(), widget, inside});
            else if (qobject_cast<SectionHeader*>(widget)) {
                found.push_back({"section", widget, widget->rect().adjusted(46, 0, 0, 0)});
            }
        }
        return found;
    }

    static double luminance(QRgb color) {
        const auto linear = [](int channel) {
            const double value = channel / 255.0;
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
               0.0722 * linear(qBlue(color));
    }
    static double contrast(QRgb one, QRgb other) {
        const double a = luminance(one);
        const double b = luminance(other);
        return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
    }
    // The contrast of the background (the most frequent colour) and the colour that differs most.
    static double contrastIn(const QImage& image) {
        std::map<QRgb, int> counts;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                ++counts[image.pixel(x, y)];
        const auto byCount = [](const auto& a, const auto& b) { return a.second < b.second; };
        const QRgb ground = std::ranges::max_element(counts, byCount)->first;
        double most = 1;
        for (const auto& [color, count] : counts)
            most = std::max(most, contrast(ground, color));
        return most;
    }

    void expectReadable(double wanted = 4.5) {
        constexpr int ratio = 4;
        QImage image(view->size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        view->render(&image);
        for (const Text& text : texts()) {
            const QRect seen =
                QRect(text.widget->mapTo(view.get(), text.where.topLeft()), text.where.size())
                    .intersected(visiblePart(*text.widget));
            if (seen.width() < 4 || seen.height() < 4) continue;
            const QRect pixels(seen.topLeft() * ratio, seen.size() * ratio);
            EXPECT_GE(contrastIn(image.copy(pixels)), wanted) << text.what;
        }
    }
    // The area in which a widget is not scrolled out of view.
    QRect visiblePart(const QWidget& widget) {
        for (auto* area : view->findChildren<QAbstractScrollArea*>())
            if (area->isAncestorOf(&widget) && area != &widget)
                return {area->viewport()->mapTo(view.get(), QPoint()), area->viewport()->size()};
        return view->rect();
    }

    // A translucent colour drawn on a background.
    static QRgb blended(const QColor& color, double opacity, QRgb ground) {
        const auto channel = [&](int over, int under) {
            return static_cast<int>(std::lround(opacity * over + (1 - opacity) * under));
        };
        return qRgb(channel(color.red(), qRed(ground)), channel(color.green(), qGreen(ground)),
                    channel(color.blue(), qBlue(ground)));
    }
    static bool isNear(QRgb one, QRgb other) {
        return std::abs(qRed(one) - qRed(other)) <= 2 &&
               std::abs(qGreen(one) - qGreen(other)) <= 2 &&
               std::abs(qBlue(one) - qBlue(other)) <= 2;
    }
    // A part of a row at a pixel ratio of 4.
    QImage pictureOf(std::size_t index, const QRect& part) {
        QImage image(part.size() * 4, QImage::Format_RGB32);
        image.setDevicePixelRatio(4);
        const QPoint corner = row(index)->mapTo(view.get(), part.topLeft());
        view->render(&image, QPoint(), QRegion(QRect(corner, part.size())));
        return image;
    }
    QImage pictureOf(std::size_t index, const QWidget& child) {
        return pictureOf(index, {child.mapTo(row(index), QPoint()), child.size()});
    }
    // The colour with the highest contrast to the background.
    static QRgb strongest(const QImage& image) {
        const QRgb ground = image.pixel(0, 0);
        QRgb found = ground;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (contrast(ground, image.pixel(x, y)) > contrast(ground, found))
                    found = image.pixel(x, y);
        return found;
    }
    void expectKindsInColour() {
        const Colors& colors = theme().colors();
        const QRgb pane = colors.pane.rgb();
        for (const auto& [index, tint, opacity, color] :
             {std::tuple(0U, colors.blueTint, 0.12, colors.blue),
              std::tuple(1U, colors.orangeTint, 0.15, colors.orange)}) {
            const QImage badge = pictureOf(index, {14, (row(index)->height() - 30) / 2, 30, 30});
            const QRgb ground = badge.pixel(60, 8);
            EXPECT_TRUE(isNear(ground, blended(tint, opacity, pane)))
                << index << std::hex << " " << ground << " " << blended(tint, opacity, pane);
            EXPECT_TRUE(isNear(strongest(badge.copy(20, 20, 80, 80)), color.rgb())) << index;
        }
    }
    void expectFaintButtons() {
        const Colors& colors = theme().colors();
        const QRgb pane = colors.pane.rgb();
        const QRgb copy = strongest(pictureOf(0, *row(0)->copyButton()));
        EXPECT_TRUE(isNear(copy, blended(colors.secondary, 0.5, pane)))
            << std::hex << copy << " " << blended(colors.secondary, 0.5, pane);
        const QRgb stop = strongest(pictureOf(0, *row(0)->stopButton()));
        EXPECT_TRUE(isNear(stop, blended(colors.red, 0.7, pane)))
            << std::hex << stop << " " << blended(colors.red, 0.7, pane);
    }

    void expectNothingClipped() {
        for (auto* widget : view->findChildren<QWidget*>()) {
            if (!widget->isVisible()) continue;
            const QWidget* parent = widget->parentWidget();
            const bool scrolls = parent->objectName() == "qt_scrollarea_viewport";
            const std::string name = widget->metaObject()->className() + std::string(" ") +
                                     widget->accessibleName().toStdString();
            if (!scrolls) {
                // Qt places a mirrored splitter's panes one pixel off.
                EXPECT_TRUE(parent->rect().adjusted(0, 0, 1, 0).contains(widget->geometry()))
                    << name;
            }
            if (const auto* label = qobject_cast<Label*>(widget)) {
                const auto flags = label->wordWrap() ? Qt::TextWordWrap : 0;
                QRect needed = label->fontMetrics().boundingRect(QRect(0, 0, label->width(), 9999),
                                                                 flags, label->shownText());
                // For a single line, boundingRect() rounds up past the font's height.
                if (!label->wordWrap() && !label->text().contains(u'\n'))
                    needed.setHeight(label->fontMetrics().height());
                EXPECT_LE(needed.height(), label->height()) << label->text().toStdString();
                EXPECT_LE(needed.width(), label->width()) << label->text().toStdString();
            } else if (const auto* selectable = qobject_cast<SelectableText*>(widget)) {
                EXPECT_GE(selectable->height(), selectable->heightForWidth(selectable->width()))
                    << name;
            } else if (const auto* push = qobject_cast<QAbstractButton*>(widget)) {
                EXPECT_LE(push->sizeHint().height(), push->height()) << name;
                EXPECT_LE(push->fontMetrics().horizontalAdvance(push->text()), push->width())
                    << push->text().toStdString();
            } else if (qobject_cast<QLineEdit*>(widget) || qobject_cast<PopUp*>(widget)) {
                EXPECT_GE(widget->height(), widget->fontMetrics().height() + 4) << name;
            }
        }
        for (const auto* area : view->findChildren<QScrollArea*>())
            EXPECT_LE(area->widget()->width(), area->viewport()->width());
        for (std::size_t i = 0; i < 2; ++i) {
            const auto* share = row(i);
            if (share == nullptr) continue;
            for (const auto* text : share->findChildren<Label*>()) {
                const QRect place(text->mapTo(share, QPoint()), text->size());
                EXPECT_LE(place.bottom(), share->height() - 10);
                EXPECT_GE(place.top(), 10 - 1);
                EXPECT_GT(place.width(), 20);
            }
        }
    }

    // As long as German tends to be.
    static QString longer(const QString& text) {
        return text.isEmpty() ? text
                              : text + u' ' +
                                    QStringLiteral("verlängert noch ein Stück")
                                        .left(text.size() * 2 / 5 + 3)
                                        .trimmed();
    }
    static void lengthenTexts(QWidget& whole) {
        for (auto* label : whole.findChildren<QLabel*>())
            label->setText(longer(label->text()));
        for (auto* button : whole.findChildren<QAbstractButton*>())
            button->setText(longer(button->text()));
        for (auto* popUp : whole.findChildren<PopUp*>())
            for (int index = 0; index < popUp->count(); ++index)
                popUp->setItemText(index, longer(popUp->itemText(index)));
    }
    // Of a menu, a list of choices or a question: no text is cut, no two parts overlap.
    static void expectWhole(const QMenu& menu) {
        EXPECT_TRUE(menu.screen()->geometry().contains(menu.geometry()));
        int bottom = 0;
        for (QAction* item : menu.actions()) {
            const QRect place = menu.actionGeometry(item);
            EXPECT_GE(place.top(), bottom);
            bottom = place.bottom();
            EXPECT_TRUE(menu.rect().contains(place));
            EXPECT_GE(place.width(), menu.fontMetrics().horizontalAdvance(item->text()) + 16);
        }
    }
    static void expectWhole(const QAbstractItemView& list) {
        for (int index = 0; index < list.model()->rowCount(); ++index) {
            const QRect place = list.visualRect(list.model()->index(index, 0));
            EXPECT_TRUE(list.viewport()->rect().contains(place)) << index;
            const QString text = list.model()->index(index, 0).data().toString();
            EXPECT_GE(place.width(), list.fontMetrics().horizontalAdvance(text) + 16) << index;
        }
    }
    static void expectWhole(const QDialog& question) {
        std::vector<const QWidget*> parts;
        for (const auto* label : question.findChildren<QLabel*>())
            if (label->isVisible()) parts.push_back(label);
        for (const auto* button : question.findChildren<QAbstractButton*>()) {
            parts.push_back(button);
            EXPECT_GE(button->width(),
                      button->fontMetrics().horizontalAdvance(button->text()) + 16);
        }
        for (const auto* part : parts) {
            const QRect place(part->mapTo(&question, QPoint()), part->size());
            EXPECT_TRUE(question.rect().contains(place));
            EXPECT_GE(part->height(), part->heightForWidth(part->width()));
            for (const auto* other : parts)
                if (other != part) {
                    EXPECT_FALSE(
                        place.intersects({other->mapTo(&question, QPoint()), other->size()}));
                }
        }
    }

    static QFont scaledFont(double factor, int stretch = 100) {
        QFont font = QApplication::font();
        font.setPointSizeF(10 * factor);
        font.setStretch(stretch);
        return font;
    }

    const QFont usual = QApplication::font();
};

TEST_F(LookTest, TextReachesAContrastOfFourAndAHalfInLight) {
    open({800, 614});
    expectReadable();
}

TEST_F(LookTest, TextReachesAContrastOfFourAndAHalfInDark) {
    const_cast<Theme&>(theme()).setDark(true);
    open({800, 614});
    expectReadable();
}

TEST_F(LookTest, TextOfAFunnelReachesAContrastOfFourAndAHalfInBoth) {
    open({800, 900});
    press("Funnel");
    expectReadable();
    const_cast<Theme&>(theme()).setDark(true);
    settle();
    expectReadable();
}

TEST_F(LookTest, TextReachesAContrastOfSevenIfTheDesktopWantsHighContrast) {
    open({800, 900});
    for (const bool dark : {false, true}) {
        const_cast<Theme&>(theme()).setLook({.isDark = dark, .hasHighContrast = true});
        press(dark ? "Serve" : "Funnel");
        expectReadable(7);
        const QRgb pane = theme().colors().pane.rgb();
        const QRgb stop = strongest(pictureOf(0, *row(0)->stopButton()));
        EXPECT_TRUE(isNear(stop, theme().colors().red.rgb()));
        EXPECT_GE(contrast(theme().colors().outline.rgb(), pane), 3);
    }
}

TEST_F(LookTest, TheDesktopsAccentColourMarksWhatIsSelectedAndStaysLegible) {
    open({800, 900});
    const auto isChecked = [&](const QColor& color) {
        auto* box = find<QCheckBox>("Run in background");
        return isNear(box->grab().toImage().pixel(3, box->height() / 2 - 4), color.rgb());
    };
    for (const bool dark : {false, true})
        for (const bool hasHighContrast : {false, true})
            for (const QColor& accent : {QColor(Qt::yellow), QColor(Qt::black), QColor(Qt::white),
                                         QColor(0x91, 0x41, 0xac)}) {
                const_cast<Theme&>(theme()).setLook(
                    {.isDark = dark, .hasHighContrast = hasHighContrast, .accent = accent});
                settle();
                const Colors& colors = theme().colors();
                EXPECT_TRUE(isChecked(colors.accentFill));
                EXPECT_GE(contrast(colors.onFill.rgb(), colors.accentFill.rgb()),
                          hasHighContrast ? 7 : 4.5);
                EXPECT_GE(contrast(colors.focus.rgb(), colors.window.rgb()), 3);
                EXPECT_EQ(view->palette().color(QPalette::Highlight), colors.accentFill);
            }
    const_cast<Theme&>(theme()).setLook({.accent = {0x91, 0x41, 0xac}});
    settle();
    EXPECT_TRUE(isChecked({0x91, 0x41, 0xac}));
    auto* start = button("Start Serve");
    EXPECT_TRUE(isNear(start->grab().toImage().pixel(10, start->height() / 2),
                       Colors::light().blueFill.rgb()));
}

TEST_F(LookTest, TextTakesTheFontThatTheDesktopAsksFor) {
    open({800, 614});
    auto* box = find<QCheckBox>("Run in background");
    const int before = box->sizeHint().height();
    QFont large(usual);
    large.setPointSizeF(20);
    const_cast<Theme&>(theme()).setLook({.font = large});
    settle();
    EXPECT_EQ(QFontInfo(box->font()).pixelSize(), 26);
    EXPECT_GT(box->height(), before);
}

TEST_F(LookTest, TheProgressIndicatorStandsIfTheDesktopWantsNoAnimations) {
    open({800, 614});
    service->isLoading.set(true);
    settle();
    auto* spinner = view->findChild<Spinner*>();
    ASSERT_NE(spinner, nullptr);
    const auto turns = [&] {
        const QImage before = spinner->grab().toImage();
        return QTest::qWaitFor([&] { return spinner->grab().toImage() != before; }, 500);
    };
    EXPECT_TRUE(turns());
    const_cast<Theme&>(theme()).setLook({.isAnimated = false});
    EXPECT_FALSE(turns());
    const_cast<Theme&>(theme()).setLook({});
    EXPECT_TRUE(turns());
}

TEST_F(LookTest, WhatCannotBePressedReachesAContrastOfFourAndAHalfToo) {
    WindowTest::SetUp();
    for (const bool dark : {false, true}) {
        const_cast<Theme&>(theme()).setDark(dark);
        settle();
        ASSERT_FALSE(button("Start Serve")->isEnabled());
        expectReadable();
    }
}

TEST_F(LookTest, ARowsKindIsBlueOrOrangeOnAThinTintOfIt) {
    open({800, 614});
    expectKindsInColour();
    const_cast<Theme&>(theme()).setDark(true);
    settle();
    expectKindsInColour();
}

TEST_F(LookTest, ARowsButtonsAreFaintWhileNothingPointsAtThem) {
    open({800, 614});
    expectFaintButtons();
    const_cast<Theme&>(theme()).setDark(true);
    settle();
    expectFaintButtons();
}

TEST_F(LookTest, ARowShowsTheSymbolOfWhatItLeadsTo) {
    open({800, 614});
    auto file = entry("/c");
    file.handlerType = ServeEntry::HandlerType::filePath;
    publish({entry("/a"), file});
    for (const auto& [index, name] : {std::pair(0U, "network"), std::pair(1U, "folder")}) {
        const auto* symbol = row(index)->findChild<SymbolView*>();
        EXPECT_EQ(symbol->symbol(), name);
        EXPECT_TRUE(isNear(strongest(pictureOf(index, *symbol)), theme().colors().secondary.rgb()));
    }
}

TEST_F(LookTest, TheWindowRepaintsWhenTheDesktopTurnsDark) {
    open({800, 614});
    const QRgb light = view->grab().toImage().pixel(5, 5);
    const_cast<Theme&>(theme()).setDark(true);
    settle();
    const QRgb dark = view->grab().toImage().pixel(5, 5);
    EXPECT_EQ(light, Colors::light().pane.rgb());
    EXPECT_EQ(dark, Colors::dark().pane.rgb());
}

// Behind a question, a dark desktop darkens the window no further.
TEST_F(LookTest, AQuestionStandsOnTheBackgroundOfAMenuAndCanBeRead) {
    open({800, 614});
    row(0)->confirmStop();
    for (const bool dark : {true, false}) {
        const_cast<Theme&>(theme()).setDark(dark);
        settle();
        const QRgb ground = dialog()->grab().toImage().pixel(5, 5);
        EXPECT_EQ(ground, theme().colors().popup.rgb());
        for (const auto* label : dialog()->findChildren<QLabel*>())
            EXPECT_GE(contrast(label->palette().color(QPalette::WindowText).rgb(), ground), 4.5)
                << label->text().toStdString();
    }
}

TEST_F(LookTest, NothingIsClippedInTheUsualWindow) {
    open({800, 614});
    expectNothingClipped();
}

TEST_F(LookTest, NothingIsClippedInTheSmallestWindow) {
    open({640, 474});
    expectNothingClipped();
}

TEST_F(LookTest, NothingIsClippedWithAFontAThirdWider) {
    QApplication::setFont(scaledFont(1, 130));
    open({640, 474});
    expectNothingClipped();
}

TEST_F(LookTest, NothingIsClippedAtTwiceTheFontSize) {
    QApplication::setFont(scaledFont(2));
    open({800, 614});
    expectNothingClipped();
}

TEST_F(LookTest, NothingIsClippedAtTwiceTheFontSizeInTheSmallestWindow) {
    QApplication::setFont(scaledFont(2));
    open({640, 474});
    expectNothingClipped();
}

TEST_F(LookTest, AFontSizeThatChangesWhileRunningIsFollowed) {
    open({800, 614});
    const int before = row(0)->height();
    QApplication::setFont(scaledFont(2));
    settle();
    EXPECT_GT(row(0)->height(), before);
    EXPECT_EQ(find<QCheckBox>("Run in background")->font().pixelSize(),
              theme().font(TextStyle::body).pixelSize());
    expectNothingClipped();
}

TEST_F(LookTest, ALongNameIsShortenedInTheMiddleAndShowsWholeInItsTooltip) {
    open({640, 474});
    const QString name = QString(120, u'n') + ".ts.net";
    service->dnsName.set(name.toStdString());
    settle();
    for (const auto* label : view->findChildren<Label*>()) {
        if (!label->text().startsWith("nnnn")) continue;
        EXPECT_TRUE(label->shownText().contains(u'…'));
        EXPECT_TRUE(label->shownText().startsWith("nn"));
        EXPECT_TRUE(label->shownText().endsWith(".net"));
        EXPECT_EQ(toolTipOf(*label), label->text());
        return;
    }
    FAIL() << "the status line is nowhere";
}

class LongTextsTest : public LookTest, public testing::WithParamInterface<Qt::LayoutDirection> {
protected:
    void SetUp() override {
        QApplication::setLayoutDirection(GetParam());
        QApplication::setFont(scaledFont(2));
        open({800, 614});
    }
    void TearDown() override {
        LookTest::TearDown();
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }
};

TEST_P(LongTextsTest, AreWholeInTheWindow) {
    lengthenTexts(*view);
    settle();
    view->resize(view->minimumSizeHint().expandedTo(view->size()));
    settle();
    EXPECT_LT(view->width(), 900);
    expectNothingClipped();
}

TEST_P(LongTextsTest, AreWholeInAMenu) {
    auto* menu = button("Reset Shares")->findChild<QMenu*>();
    for (QAction* item : menu->actions())
        item->setText(longer(item->text()));
    press("Reset Shares");
    expectWhole(*menu);
    menu->close();
}

TEST_P(LongTextsTest, AreWholeInTheListOfSourceTypes) {
    auto* picker = find<PopUp>("Source Type");
    for (int index = 0; index < picker->count(); ++index)
        picker->setItemText(index, longer(picker->itemText(index)));
    picker->showPopup();
    settle();
    expectWhole(*picker->view());
    picker->hidePopup();
}

TEST_P(LongTextsTest, AreWholeInAQuestion) {
    row(0)->confirmStop();
    settle();
    lengthenTexts(*dialog());
    dialog()->adjustSize();
    settle();
    expectWhole(*dialog());
}

INSTANTIATE_TEST_SUITE_P(BothWays, LongTextsTest,
                         testing::Values(Qt::LeftToRight, Qt::RightToLeft));

TEST_F(LookTest, MirroredForRightToLeftNothingIsClipped) {
    QApplication::setLayoutDirection(Qt::RightToLeft);
    open({800, 614});
    expectNothingClipped();
    EXPECT_LT(row(0)->stopButton()->x(), row(0)->copyButton()->x());
    EXPECT_LT(row(0)->copyButton()->x(), row(0)->findChild<ShareAddress*>()->x());
    EXPECT_EQ(row(0)->stopButton()->x(), 14);
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

} // namespace
} // namespace brevane::test
