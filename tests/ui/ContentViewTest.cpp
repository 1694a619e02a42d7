// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include "QtText.h"

#include <QClipboard>
#include <QLayout>
#include <QMenu>
#include <QSplitter>
#include <QTextEdit>

namespace brevane::test {
namespace {

using ContentViewTest = WindowTest;

TEST_F(ContentViewTest, ShowsTheConnectionThatTheServicePublishes) {
    EXPECT_TRUE(shows("Not connected"));
    service->isConnected.set(true);
    settle();
    EXPECT_TRUE(shows("Connected"));
    service->tailscaleIP.set("100.64.0.1");
    settle();
    EXPECT_TRUE(shows("100.64.0.1"));
    service->dnsName.set("h.tail.ts.net");
    settle();
    EXPECT_TRUE(shows("h.tail.ts.net \u00b7 100.64.0.1"));
}

TEST_F(ContentViewTest, EntriesThatAreAllFunnelsShowOnlyTheFunnelsSection) {
    publish({entry("/", true), entry("/a", true)});
    EXPECT_TRUE(shows("Funnels"));
    EXPECT_FALSE(shows("Serves"));
}

TEST_F(ContentViewTest, EntriesThatAreAllServesShowOnlyTheServesSection) {
    publish({entry("/"), entry("/a")});
    EXPECT_TRUE(shows("Serves"));
    EXPECT_FALSE(shows("Funnels"));
}

TEST_F(ContentViewTest, ServesStandAboveFunnelsInTheOrderOfTheEntries) {
    publish({entry("/b"), entry("/a"), entry("/d", true), entry("/c", true)});
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < 4; ++i)
        paths.push_back(row(i)->entry().urlPath);
    EXPECT_EQ(paths, (std::vector<std::string>{"/b", "/a", "/d", "/c"}));
    for (std::size_t i = 1; i < 4; ++i)
        EXPECT_GT(row(i)->mapTo(&list(), QPoint()).y(), row(i - 1)->mapTo(&list(), QPoint()).y());
}

TEST_F(ContentViewTest, WithoutEntriesTheEmptyStateStandsInThePlaceOfTheList) {
    publish({});
    EXPECT_FALSE(list().isVisible());
    EXPECT_TRUE(shows("No active shares"));
    EXPECT_TRUE(shows("Use the form on the right to\ncreate a Serve or Funnel."));
    publish({entry("/")});
    EXPECT_TRUE(list().isVisible());
    EXPECT_FALSE(shows("No active shares"));
}

TEST_F(ContentViewTest, RefreshReadsStatusAndShares) {
    press(refreshButton);
    ASSERT_TRUE(until([&] { return service->isConnected.get(); }));
    EXPECT_EQ(commands(), (std::vector<std::string>{"status --json", "serve status --json"}));
    EXPECT_TRUE(shows("h.tail.ts.net \u00b7 100.64.0.1"));
}

TEST_F(ContentViewTest, ControlAndRRefresh) {
    QTest::keyClick(view.get(), Qt::Key_R, Qt::ControlModifier);
    ASSERT_TRUE(until([&] { return commands().size() == 2; }));
}

TEST_F(ContentViewTest, AProgressIndicatorShowsWhileLoading) {
    EXPECT_FALSE(shows("Busy"));
    service->isLoading.set(true);
    settle();
    EXPECT_TRUE(shows("Busy"));
    service->isLoading.set(false);
    settle();
    EXPECT_FALSE(shows("Busy"));
}

TEST_F(ContentViewTest, HoweverMuchChangesItRedrawsOncePerTurn) {
    struct Turns : QObject {
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::MetaCall) ++count;
            return false;
        }
        int count = 0;
    } turns;
    view->installEventFilter(&turns);
    for (int change = 0; change < 10; ++change) {
        service->isConnected.set(true);
        service->dnsName.set("name" + std::to_string(change));
        service->entries.set(serves(change));
        service->lastError.set("error");
    }
    settle();
    EXPECT_EQ(turns.count, 1);
    EXPECT_TRUE(shows("name9"));
    EXPECT_EQ(list().rows().size(), 9);
}

TEST_F(ContentViewTest, TheBannerShowsTheErrorUntilItIsCleared) {
    service->lastError.set("it went wrong");
    settle();
    EXPECT_TRUE(shows("it went wrong"));
    press("Clear");
    EXPECT_EQ(service->lastError.get(), std::nullopt);
    EXPECT_EQ(button("Clear"), nullptr);
}

TEST_F(ContentViewTest, OfAnEndlessErrorTheBannerShowsAndSaysTheBeginning) {
    service->lastError.set(std::string(1'000'000, 'x'));
    settle();
    auto* text = find<QTextEdit>("Error");
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->toPlainText().endsWith("x… and 990.0 kB more"));
    for (const QWidget* widget : view->findChildren<QWidget*>())
        EXPECT_LT(widget->accessibleName().size(), 11'000);
}

TEST(ShownText, EndsBetweenTwoCharacters) {
    std::string text = "x";
    for (int index = 0; index < 30'000; ++index)
        text += "\U0001F600";
    const QString shown = shownText(text);
    EXPECT_EQ(shown.left(9'999), toQString(text).left(9'999));
    EXPECT_EQ(shown.mid(9'999), "… and 100.0 kB more");
}

TEST_F(ContentViewTest, ALongErrorWithoutBlanksWrapsAndCanBeSelected) {
    const std::string error(300, 'x');
    service->lastError.set(error);
    settle();
    auto* text = find<QTextEdit>("Error");
    ASSERT_NE(text, nullptr);
    EXPECT_GE(text->height(), 3 * text->fontMetrics().height());
    EXPECT_LE(text->document()->size().width(), text->viewport()->width());
    EXPECT_LE(text->document()->size().height(), text->height());
    text->selectAll();
    text->copy();
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), error);
}

TEST_F(ContentViewTest, CopyPutsTheUrlOnTheClipboard) {
    publish({entry("/docs", false, 8443)});
    press("Copy URL");
    EXPECT_EQ(QApplication::clipboard()->text(), "https://h.tail.ts.net:8443/docs");
    EXPECT_TRUE(shows("URL copied!"));
}

TEST_F(ContentViewTest, ATwiceShownToastStaysThreeSecondsFromItsSecondStart) {
    view->showToast("first");
    QElapsedTimer sinceFirst;
    sinceFirst.start();
    ASSERT_TRUE(until([&] { return sinceFirst.elapsed() >= 1000; }));
    view->showToast("second");
    QElapsedTimer sinceSecond;
    sinceSecond.start();
    EXPECT_FALSE(shows("first"));
    ASSERT_TRUE(until([&] { return !shows("second"); }));
    EXPECT_GE(sinceSecond.elapsed(), 2990);
    EXPECT_LT(sinceSecond.elapsed(), 10'000); // generous, for a busy machine
}

TEST_F(ContentViewTest, TheToastSpansTheWindowBelowThePanes) {
    view->showToast("URL copied!");
    settle();
    const auto* split = view->findChild<QSplitter*>();
    const auto* toast = find<QWidget>("URL copied!");
    EXPECT_EQ(toast->width(), view->width());
    EXPECT_EQ(toast->y(), split->geometry().bottom() + 1);
    EXPECT_EQ(toast->geometry().bottom() + 1, view->height());
}

TEST_F(ContentViewTest, PanesKeepToTheirWidths) {
    const auto* split = view->findChild<QSplitter*>();
    EXPECT_EQ(split->widget(0)->minimumWidth(), 310);
    EXPECT_EQ(split->widget(1)->minimumWidth(), 280);
    EXPECT_EQ(split->widget(1)->maximumWidth(), 400);
    view->resize(400 + 1 + 340, 614);
    settle();
    EXPECT_EQ(split->widget(0)->width(), 400);
    EXPECT_EQ(split->widget(1)->width(), 340);
    view->resize(2000, 614);
    settle();
    EXPECT_LE(split->widget(1)->width(), 400);
}

TEST_F(ContentViewTest, BothHeadersAreEquallyHigh) {
    const auto* split = view->findChild<QSplitter*>();
    const auto dividerY = [&](int pane) {
        return split->widget(pane)->layout()->itemAt(1)->widget()->y();
    };
    EXPECT_EQ(dividerY(0), dividerY(1));
    EXPECT_GE(dividerY(0), 56);
}

TEST_F(ContentViewTest, TheModePickerIs200WideAndSaysWhoCanReachAShare) {
    EXPECT_EQ(button("Serve")->parentWidget()->width(), 200);
    EXPECT_TRUE(shows("Tailnet only \u2014 private to your network"));
    press("Funnel");
    EXPECT_TRUE(shows("Public internet \u2014 anyone with the URL"));
    EXPECT_TRUE(button("Start Funnel"));
}

} // namespace
} // namespace brevane::test
