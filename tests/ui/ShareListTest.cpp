// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include "ShareAddress.h"

#include <QAccessible>
#include <QClipboard>
#include <QMessageBox>
#include <QScrollBar>

namespace brevane::test {
namespace {

class ShareListTest : public WindowTest {
protected:
    // The same shares after a refresh: new identities, the same order.
    static std::vector<ServeEntry> readAnew(std::vector<ServeEntry> entries) {
        for (auto& known : entries)
            known.id = makeEntryId();
        return entries;
    }
    // The two texts of a row.
    const ShareAddress& address(std::size_t index) {
        return *row(index)->findChild<ShareAddress*>();
    }
    const Label& detail(std::size_t index) {
        const Label* found = nullptr;
        for (const auto* label : row(index)->findChildren<Label*>())
            if (label != &address(index)) found = label;
        return *found;
    }
    std::vector<std::string> changes() {
        auto all = commands();
        std::erase_if(all, [](const std::string& line) { return line.ends_with("--json"); });
        return all;
    }
    // Makes the daemon report these shares, so that the refresh after a command lists them.
    void daemonLists(const std::vector<ServeEntry>& entries) {
        std::string handlers;
        for (const auto& known : entries)
            handlers += (handlers.empty() ? "" : ",") + std::string("\"") + known.urlPath +
                        R"(":{"Proxy":"http://127.0.0.1:3000"})";
        servePrints(R"({"Web":{"h.tail.ts.net:443":{"Handlers":{)" + handlers + "}}}}");
    }
};

TEST_F(ShareListTest, StopAsksFirstAndThenStopsThePort) {
    publish({entry("/docs", false, 8443)});
    press("Stop share");
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(dialog())->role(), QAccessible::Dialog);
    EXPECT_EQ(dialog()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(dialog()->accessibleName(), "Stop share on port 8443");
    EXPECT_EQ(message(),
              "This will stop all handlers on port 8443. All paths served on this port will become "
              "unavailable.");
    EXPECT_TRUE(changes().empty());
    press("Stop");
    ASSERT_TRUE(until([&] { return shows("Share stopped"); }));
    EXPECT_EQ(changes(), std::vector<std::string>{"serve --https=8443 off"});
}

TEST_F(ShareListTest, CancellingTheStopDialogLeavesTheShareRunning) {
    publish(serves(2));
    press("Stop share");
    press("Cancel");
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_TRUE(changes().empty());
    EXPECT_FALSE(row(0)->isStopping());
}

TEST_F(ShareListTest, AFailedStopWithEmptyOutputShowsTheFixedMessageInTheBanner) {
    changesDo("exit 1");
    publish(serves(1));
    press("Stop share");
    press("Stop");
    ASSERT_TRUE(until([&] { return shows("Failed to stop share"); }));
    EXPECT_FALSE(shows("Share stopped"));
}

TEST_F(ShareListTest, AFailedStopStaysReadableAfterTheRefreshThatFollowsIt) {
    changesDo("echo no such port; exit 1");
    publish(serves(1));
    press("Stop share");
    press("Stop");
    ASSERT_TRUE(until([&] {
        const auto ran = commands();
        return !ran.empty() && ran.back() == "serve status --json" && !service->isLoading.get();
    }));
    EXPECT_TRUE(shows("no such port"));
}

TEST_F(ShareListTest, StoppingMarksAllRowsOfThePortUntilTheAnswer) {
    changesDo("while [ ! -e \"$0.go\" ]; do sleep 0.01; done");
    publish({entry("/0"), entry("/1"), entry("/2", false, 8443)});
    daemonLists(serves(2));
    press("Stop share");
    press("Stop");
    EXPECT_TRUE(row(0)->isStopping());
    EXPECT_TRUE(row(1)->isStopping());
    EXPECT_FALSE(row(2)->isStopping());
    EXPECT_TRUE(row(2)->stopButton()->isEnabled());
    // A refresh meanwhile keeps the mark, and the row cannot be stopped twice.
    publish(readAnew(serves(2)));
    EXPECT_TRUE(row(0)->isStopping());
    EXPECT_FALSE(row(0)->stopButton()->isEnabled());
    EXPECT_EQ(row(0)->stopButton()->accessibleDescription(), "Stopping, https://h.tail.ts.net/0");
    row(0)->confirmStop();
    EXPECT_EQ(dialog(), nullptr);
    writeFile(folder / "tailscale.go", "");
    ASSERT_TRUE(until([&] { return shows("Share stopped"); }));
    EXPECT_FALSE(row(0)->isStopping());
}

TEST_F(ShareListTest, ARefreshKeepsEveryRowsControlsOnScreen) {
    publish(serves(5));
    struct Hidden : QObject {
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Hide) ++count;
            return false;
        }
        int count = 0;
    } hidden;
    std::vector<ShareRowView*> before;
    for (std::size_t i = 0; i < 5; ++i) {
        before.push_back(row(i));
        row(i)->installEventFilter(&hidden);
    }
    publish(readAnew(serves(5)));
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(row(i), before[i]);
    EXPECT_EQ(hidden.count, 0);
}

TEST_F(ShareListTest, ARefreshKeepsTheScrollPosition) {
    publish(serves(100));
    list().verticalScrollBar()->setValue(1234);
    settle();
    publish(readAnew(serves(100)));
    EXPECT_EQ(list().verticalScrollBar()->value(), 1234);
}

TEST_F(ShareListTest, TheTopmostRowInViewStaysWhereItIsWhenOthersComeAboveIt) {
    publish(serves(100));
    list().verticalScrollBar()->setValue(1234);
    settle();
    std::size_t index = 0;
    while (row(index)->visibleRegion().isEmpty())
        ++index;
    ShareRowView* top = row(index);
    const int y = top->mapTo(list().viewport(), QPoint()).y();
    const std::string path = top->entry().urlPath;
    auto more = serves(100);
    more.insert(more.begin(), {entry("/new"), entry("/newer")});
    publish(more);
    EXPECT_EQ(row(index + 2), top);
    EXPECT_EQ(top->entry().urlPath, path);
    EXPECT_EQ(top->mapTo(list().viewport(), QPoint()).y(), y);
}

TEST_F(ShareListTest, TheFocusFollowsItsShare) {
    publish({entry("/a"), entry("/b"), entry("/c")});
    row(1)->stopButton()->setFocus();
    publish({entry("/new"), entry("/a"), entry("/b"), entry("/c")});
    EXPECT_EQ(row(2)->entry().urlPath, "/b");
    EXPECT_EQ(QApplication::focusWidget(), row(2)->stopButton());
}

TEST_F(ShareListTest, AShareThatBecomesPublicTakesTheFocusAlong) {
    publish({entry("/a"), entry("/b"), entry("/c")});
    row(0)->stopButton()->setFocus();
    publish({entry("/b"), entry("/c"), entry("/a", true)});
    EXPECT_EQ(QApplication::focusWidget(), row(2)->stopButton());
}

TEST_F(ShareListTest, ARowKeepsTheFocusWhileItIsStopped) {
    changesDo("while [ ! -e \"$0.go\" ]; do sleep 0.01; done");
    publish(serves(2));
    daemonLists(serves(2));
    row(0)->stopButton()->setFocus(Qt::TabFocusReason);
    QTest::keyClick(row(0)->stopButton(), Qt::Key_Return);
    settle();
    press("Stop");
    ASSERT_TRUE(row(0)->isStopping());
    EXPECT_EQ(view->focusWidget(), row(0)->stopButton());
    writeFile(folder / "tailscale.go", "");
    ASSERT_TRUE(until([&] { return shows("Share stopped"); }));
    EXPECT_EQ(view->focusWidget(), row(0)->stopButton());
}

TEST_F(ShareListTest, TheFocusOfAShareThatHasGoneMovesToTheOneInItsPlace) {
    publish({entry("/a"), entry("/b"), entry("/c")});
    row(1)->stopButton()->setFocus();
    publish({entry("/a"), entry("/c")});
    EXPECT_EQ(QApplication::focusWidget(), row(1)->stopButton());
    EXPECT_EQ(row(1)->entry().urlPath, "/c");
}

TEST_F(ShareListTest, AmongAlikeSharesTheFocusStaysWithTheSameOccurrence) {
    publish({entry("/a"), entry("/a"), entry("/a")});
    row(1)->copyButton()->setFocus();
    auto* focused = row(1);
    publish({entry("/new"), entry("/a"), entry("/a"), entry("/a")});
    EXPECT_EQ(row(2), focused);
    EXPECT_EQ(QApplication::focusWidget(), row(2)->copyButton());
}

TEST_F(ShareListTest, AnOpenQuestionStaysWithItsShare) {
    changesDo("sleep 1000");
    publish({entry("/a"), entry("/b")});
    row(1)->confirmStop();
    settle();
    publish({entry("/new"), entry("/a"), entry("/b")});
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(row(2)->stopConfirmation(), dialog());
    EXPECT_EQ(row(0)->stopConfirmation(), nullptr);
    press("Stop");
    EXPECT_TRUE(row(2)->isStopping());
}

TEST_F(ShareListTest, TheQuestionOfAShareThatHasGoneClosesWithoutHarm) {
    publish({entry("/a"), entry("/b")});
    row(1)->confirmStop();
    settle();
    ASSERT_NE(dialog(), nullptr);
    publish({entry("/a")});
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_TRUE(changes().empty());
}

TEST_F(ShareListTest, AQuestionStaysOpenWhenTheListEmptiesAndFills) {
    publish(serves(3));
    row(0)->confirmStop();
    settle();
    publish({});
    EXPECT_EQ(dialog(), nullptr);
    publish(serves(3));
    EXPECT_EQ(row(0)->stopConfirmation(), nullptr);
}

TEST_F(ShareListTest, TheRowUnderThePointerIsTheHoveredOne) {
    publish(serves(3));
    QTest::mouseMove(row(1), QPoint(60, 10));
    settle();
    EXPECT_TRUE(row(1)->isHovered());
    EXPECT_FALSE(row(0)->isHovered());
    QTest::mouseMove(view.get(), QPoint(2, 2));
    settle();
    EXPECT_FALSE(row(1)->isHovered());
}

TEST_F(ShareListTest, ARowsButtonsSayInTheirTooltipsWhatTheyDo) {
    publish(serves(1));
    EXPECT_EQ(toolTipOf(*row(0)->copyButton()), "Copy URL");
    EXPECT_EQ(toolTipOf(*row(0)->stopButton()), "Stop share");
}

TEST_F(ShareListTest, TenThousandSharesHaveARowEach) {
    publish(serves(10'000));
    ASSERT_EQ(list().rows().size(), 10'000);
    EXPECT_EQ(row(9999)->entry().urlPath, "/9999");
    list().verticalScrollBar()->setValue(list().verticalScrollBar()->maximum());
    settle();
    EXPECT_LE(row(9999)->mapTo(list().viewport(), row(9999)->rect().bottomRight()).y(),
              list().viewport()->height());
    EXPECT_FALSE(row(9999)->visibleRegion().isEmpty());
}

TEST_F(ShareListTest, TabGoesThroughTheRowsFromTopToBottomWhateverTheOrderTheyCameIn) {
    publish({entry("/c"), entry("/d", true)});
    publish({entry("/a"), entry("/b"), entry("/c"), entry("/d", true), entry("/e", true)});
    publish({entry("/b"), entry("/a"), entry("/c"), entry("/d", true), entry("/e", true)});
    button("Reset Shares")->setFocus(Qt::TabFocusReason);
    for (std::size_t index = 0; index < 5; ++index)
        for (const QWidget* stop : {row(index)->copyButton(), row(index)->stopButton()}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            EXPECT_EQ(QApplication::focusWidget(), stop) << index;
        }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), button("Serve"));
}

TEST_F(ShareListTest, BacktabIntoTheListShowsItsLastRow) {
    publish(serves(100));
    button("Serve")->setFocus(Qt::TabFocusReason);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), row(99)->stopButton());
    EXPECT_FALSE(row(99)->stopButton()->visibleRegion().isEmpty());
}

TEST_F(ShareListTest, AScreenReaderComesToAHeadingBeforeItsRowsAndToTheseInTheirOrder) {
    publish({entry("/c"), entry("/d", true)});
    publish({entry("/a"), entry("/b"), entry("/c"), entry("/d", true), entry("/e", true)});
    std::vector<std::string> names;
    const std::function<void(QAccessibleInterface*)> visit = [&](QAccessibleInterface* node) {
        if (node->state().invisible) return;
        if (node->role() == QAccessible::Heading || node->role() == QAccessible::ListItem)
            names.push_back(node->text(QAccessible::Name).section(',', 0, 1).toStdString());
        for (int i = 0; i < node->childCount(); ++i)
            visit(node->child(i));
    };
    visit(QAccessible::queryAccessibleInterface(&list()));
    EXPECT_EQ(names, (std::vector<std::string>{"Serves", "Serve, https://h.tail.ts.net/a",
                                               "Serve, https://h.tail.ts.net/b",
                                               "Serve, https://h.tail.ts.net/c", "Funnels",
                                               "Funnel, https://h.tail.ts.net/d",
                                               "Funnel, https://h.tail.ts.net/e"}));
}

TEST_F(ShareListTest, ARowsPlaceAmongItsKindIsItsPlaceInTheListThatHoldsIt) {
    publish({entry("/a"), entry("/b"), entry("/c"), entry("/d", true)});
    publish({entry("/new"), entry("/a"), entry("/b"), entry("/c"), entry("/d", true)});
    for (int place = 0; place < 4; ++place) {
        auto* node = QAccessible::queryAccessibleInterface(row(static_cast<std::size_t>(place)));
        EXPECT_EQ(node->parent()->indexOfChild(node), place);
        EXPECT_EQ(node->parent()->childCount(), 4);
    }
}

TEST_F(ShareListTest, RowsAreAsWideWithAScrollBarAsWithout) {
    publish(serves(2));
    const int width = row(0)->width();
    EXPECT_EQ(width, list().width() - 2 * 14);
    publish(serves(200));
    EXPECT_TRUE(list().verticalScrollBar()->isVisible());
    EXPECT_EQ(row(0)->width(), width);
    EXPECT_EQ(row(0)->mapTo(&list(), QPoint()).x(), 14);
}

TEST_F(ShareListTest, ARowsPartsStandWhereTheyBelong) {
    publish({entry("/docs"), entry("/pub", true)});
    const auto place = [](const QWidget& part, const ShareRowView& share) {
        return QRect(part.mapTo(&share, QPoint()), part.size());
    };
    const ShareRowView& serve = *row(0);
    const QWidget* badge = serve.childAt(14 + 15, serve.height() / 2);
    ASSERT_NE(badge, nullptr);
    EXPECT_EQ(place(*badge, serve), QRect(14, (serve.height() - 30) / 2, 30, 30));
    EXPECT_GE(serve.height(), 30 + 2 * 10);
    EXPECT_EQ(serve.stopButton()->geometry().right() + 1, serve.width() - 14);
    EXPECT_EQ(serve.copyButton()->geometry().right() + 1, serve.stopButton()->x());
    EXPECT_LT(place(address(0), serve).bottom(), place(detail(0), serve).top());
    EXPECT_TRUE(address(0).tagRect().isEmpty());
    const QRect tag = address(1).tagRect();
    EXPECT_EQ(tag.left(), address(1).fontMetrics().horizontalAdvance(address(1).text()) + 6);
    EXPECT_LT(place(address(1), *row(1)).left() + tag.right(), row(1)->copyButton()->x());
}

TEST_F(ShareListTest, TheTagStandsSixBehindAnAddressThatIsShortened) {
    for (int length = 60; length < 80; ++length) {
        publish({entry("/" + std::string(static_cast<std::size_t>(length), 'm'), true)});
        ASSERT_NE(address(0).shownText(), address(0).text());
        const int shown = address(0).fontMetrics().horizontalAdvance(address(0).shownText());
        EXPECT_EQ(address(0).tagRect().left(), shown + 6);
        EXPECT_LT(address(0).tagRect().right(), address(0).width());
    }
}

TEST_F(ShareListTest, ARowReadsAsOneThing) {
    service->managedServerInfo.set({{3000, {.path = "/srv/site", .isDirectory = true}}});
    publish({entry("/")});
    auto* accessible = QAccessible::queryAccessibleInterface(row(0));
    EXPECT_EQ(accessible->role(), QAccessible::ListItem);
    EXPECT_EQ(accessible->text(QAccessible::Name),
              "Serve, https://h.tail.ts.net, folder /srv/site");
    EXPECT_EQ(accessible->parent()->role(), QAccessible::List);
}

TEST_F(ShareListTest, ARowsButtonsAreDescribedByItsUrl) {
    publish({entry("/docs")});
    for (const QWidget* button :
         {static_cast<QWidget*>(row(0)->copyButton()), static_cast<QWidget*>(row(0)->stopButton())})
        EXPECT_EQ(button->accessibleDescription(), "https://h.tail.ts.net/docs");
}

TEST_F(ShareListTest, ControlAndCOnARowCopyItsUrl) {
    publish({entry("/docs")});
    row(0)->stopButton()->setFocus();
    QTest::keyClick(row(0)->stopButton(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "https://h.tail.ts.net/docs");
}

TEST_F(ShareListTest, ArrowsMoveFromRowToRowAndScroll) {
    publish(serves(100));
    row(0)->copyButton()->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), row(1)->copyButton());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    EXPECT_EQ(QApplication::focusWidget(), row(0)->copyButton());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
    ASSERT_NE(row(99), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), row(99)->copyButton());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Home);
    EXPECT_EQ(QApplication::focusWidget(), row(0)->copyButton());
    EXPECT_EQ(list().verticalScrollBar()->value(), 0);
}

TEST_F(ShareListTest, AFocusedRowKeepsItsControlsWhenItIsScrolledOutOfView) {
    publish(serves(100));
    row(0)->copyButton()->setFocus();
    list().verticalScrollBar()->setValue(3000);
    settle();
    EXPECT_EQ(QApplication::focusWidget(), row(0)->copyButton());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    EXPECT_EQ(QApplication::focusWidget(), row(1)->copyButton());
    EXPECT_EQ(row(1)->visibleRegion().boundingRect(), row(1)->rect());
}

TEST_F(ShareListTest, LongTextsShowWholeInATooltip) {
    auto both = entry("/" + std::string(200, 'p'));
    both.handlerDetail = "http://127.0.0.1:3000/" + std::string(200, 'd');
    publish({both});
    for (const Label* label : {static_cast<const Label*>(&address(0)), &detail(0)}) {
        EXPECT_LT(label->mapTo(row(0), label->rect().topRight()).x(), row(0)->copyButton()->x());
        EXPECT_TRUE(label->shownText().contains(u'…'));
        EXPECT_EQ(toolTipOf(*label), label->text());
    }
    publish({entry("/p")});
    EXPECT_EQ(toolTipOf(address(0)), "");
    EXPECT_EQ(toolTipOf(detail(0)), "");
}

} // namespace
} // namespace brevane::test
