// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include "ConfirmationDialog.h"

#include <QAccessible>
#include <QClipboard>
#include <QScrollBar>

namespace brevane::test {
namespace {

class ShareListTest : public WindowTest {
protected:
    // The same shares read anew: other identities, the same order.
    static std::vector<ServeEntry> readAnew(std::vector<ServeEntry> entries) {
        for (auto& known : entries)
            known.id = makeEntryId();
        return entries;
    }
    std::vector<std::string> changes() {
        auto all = commands();
        std::erase_if(all, [](const std::string& line) { return line.ends_with("--json"); });
        return all;
    }
    // The list as the daemon now reports it, so that the refresh after a command brings it back.
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
    EXPECT_EQ(dialog()->accessibleName(), "Stop share on port 8443");
    EXPECT_EQ(dialog()->accessibleDescription(),
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
    ASSERT_TRUE(until([&] { return service->isLoading.get(); }));
    ASSERT_TRUE(until([&] { return !service->isLoading.get(); }));
    EXPECT_TRUE(shows("no such port"));
}

TEST_F(ShareListTest, StoppingMarksTheRowUntilTheAnswer) {
    changesDo("while [ ! -e \"$0.go\" ]; do sleep 0.01; done");
    publish(serves(2));
    daemonLists(serves(2));
    press("Stop share");
    press("Stop");
    EXPECT_TRUE(row(0)->isStopping());
    EXPECT_FALSE(row(1)->isStopping());
    // A list read anew meanwhile keeps the mark, and the row cannot be stopped twice.
    publish(readAnew(serves(2)));
    EXPECT_TRUE(row(0)->isStopping());
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
    ShareRowView* top = nullptr;
    std::size_t index = 0;
    while (top == nullptr)
        top = row(index++);
    const int y = top->y();
    const std::string path = top->entry().urlPath;
    auto more = serves(100);
    more.insert(more.begin(), {entry("/new"), entry("/newer")});
    publish(more);
    EXPECT_EQ(row(index + 1), top);
    EXPECT_EQ(top->entry().urlPath, path);
    EXPECT_EQ(top->y(), y);
}

TEST_F(ShareListTest, TheFocusFollowsItsShare) {
    publish({entry("/a"), entry("/b"), entry("/c")});
    row(1)->stopButton()->setFocus();
    publish({entry("/new"), entry("/a"), entry("/b"), entry("/c")});
    EXPECT_EQ(row(2)->entry().urlPath, "/b");
    EXPECT_EQ(QApplication::focusWidget(), row(2)->stopButton());
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

TEST_F(ShareListTest, OnlyTheRowsInViewExist) {
    publish(serves(10'000));
    EXPECT_NE(row(0), nullptr);
    EXPECT_EQ(row(5000), nullptr);
    EXPECT_LE(list().findChildren<ShareRowView*>().size(), 20);
    list().verticalScrollBar()->setValue(list().verticalScrollBar()->maximum());
    settle();
    ASSERT_NE(row(9999), nullptr);
    EXPECT_LE(row(9999)->geometry().bottom() + 1, list().viewport()->height());
    EXPECT_LE(list().findChildren<ShareRowView*>().size(), 20);
}

TEST_F(ShareListTest, RowsAreAsWideWithAScrollBarAsWithout) {
    publish(serves(2));
    const int width = row(0)->width();
    EXPECT_EQ(width, list().width() - 2 * 14);
    publish(serves(200));
    EXPECT_TRUE(list().verticalScrollBar()->isVisible());
    EXPECT_EQ(row(0)->width(), width);
    EXPECT_EQ(row(0)->x(), 14);
}

TEST_F(ShareListTest, ARowsPartsStandWhereTheyBelong) {
    publish({entry("/docs"), entry("/pub", true)});
    const auto parts = row(0)->geometryOfParts();
    EXPECT_EQ(parts.badge.size(), QSize(30, 30));
    EXPECT_EQ(parts.badge.left(), 14);
    EXPECT_EQ(parts.tag.width(), 0);
    EXPECT_GE(row(0)->height(), 30 + 2 * 10);
    EXPECT_EQ(row(0)->stopButton()->geometry().right() + 1, row(0)->width() - 14);
    EXPECT_LT(parts.url.bottom(), parts.detail.top());
    const auto funnel = row(1)->geometryOfParts();
    EXPECT_GT(funnel.tag.width(), 0);
    EXPECT_GT(funnel.tag.left(), funnel.url.right());
    EXPECT_LT(funnel.tag.right(), row(1)->copyButton()->x());
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
    EXPECT_GE(row(1)->y(), 0);
}

TEST_F(ShareListTest, LongTextsShowWholeInATooltip) {
    auto long1 = entry("/" + std::string(200, 'p'));
    publish({long1});
    const auto parts = row(0)->geometryOfParts();
    EXPECT_LT(parts.url.right(), row(0)->copyButton()->x());
    EXPECT_LT(parts.detail.right(), row(0)->copyButton()->x());
}

} // namespace
} // namespace brevane::test
