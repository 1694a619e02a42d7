// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

namespace brevane::test {
namespace {

class ResetTest : public WindowTest {
protected:
    void choose(const QString& item) {
        for (auto* action : view->findChildren<QAction*>())
            if (action->text() == item) action->trigger();
        settle();
    }
    std::vector<std::string> changes() {
        auto all = commands();
        std::erase_if(all, [](const std::string& line) { return line.ends_with("--json"); });
        return all;
    }
};

TEST_F(ResetTest, TheMenuHoldsThreeItemsInThisOrder) {
    press("Reset Shares");
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    std::vector<std::string> items;
    for (const QAction* action : menu->actions())
        items.push_back(action->text().toStdString());
    EXPECT_EQ(items, (std::vector<std::string>{"Reset All Serves", "Reset All Funnels",
                                               "Reset Everything"}));
    menu->close();
}

TEST_F(ResetTest, FunnelsAndThenCancelStopsNothingAndKeepsTheTarget) {
    choose("Reset All Funnels");
    ASSERT_NE(dialog(), nullptr);
    press("Cancel");
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(view->currentResetTarget(), ResetTarget::funnels);
    EXPECT_TRUE(changes().empty());
}

TEST_F(ResetTest, AnotherChoiceDoesNotChangeWhatTheOpenQuestionWillDo) {
    choose("Reset All Funnels");
    choose("Reset Everything");
    EXPECT_EQ(view->currentResetTarget(), ResetTarget::funnels);
    EXPECT_EQ(dialog()->accessibleName(), "Reset All Funnels?");
    press("Reset");
    ASSERT_TRUE(until([&] { return !changes().empty(); }));
    EXPECT_EQ(changes(), std::vector<std::string>{"funnel reset"});
}

TEST_F(ResetTest, TheMenusKeysWorkWhileAQuestionIsOpen) {
    QMainWindow window;
    int quits = 0;
    auto* quit = window.menuBar()->addMenu("Brevane")->addAction("Quit");
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    quit->setShortcutContext(Qt::ApplicationShortcut);
    QObject::connect(quit, &QAction::triggered, [&] { ++quits; });
    window.setCentralWidget(view.get());
    window.show();
    window.activateWindow();
    settle();
    choose("Reset Everything");
    ASSERT_NE(dialog(), nullptr);
    QTest::keyClick(dialog(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(quits, 1);
    press("Cancel");
    static_cast<void>(window.takeCentralWidget());
}

TEST_F(ResetTest, AllServes) {
    choose("Reset All Serves");
    EXPECT_EQ(dialog()->accessibleName(), "Reset All Serves?");
    EXPECT_EQ(message(), "This will stop all active serves (tailnet-only).");
    press("Reset");
    ASSERT_TRUE(until([&] { return shows("Serves stopped"); }));
    EXPECT_EQ(changes(), std::vector<std::string>{"serve reset"});
}

TEST_F(ResetTest, AllFunnels) {
    choose("Reset All Funnels");
    EXPECT_EQ(dialog()->accessibleName(), "Reset All Funnels?");
    EXPECT_EQ(message(), "This will stop all active funnels (public internet).");
    press("Reset");
    ASSERT_TRUE(until([&] { return shows("Funnels stopped"); }));
    EXPECT_EQ(changes(), std::vector<std::string>{"funnel reset"});
}

TEST_F(ResetTest, Everything) {
    choose("Reset Everything");
    EXPECT_EQ(dialog()->accessibleName(), "Reset All Shares?");
    EXPECT_EQ(message(), "This will stop all active serves and funnels.");
    press("Reset");
    ASSERT_TRUE(until([&] { return shows("All shares stopped"); }));
    EXPECT_EQ(changes(), (std::vector<std::string>{"serve reset", "funnel reset"}));
}

TEST_F(ResetTest, TheToastShowsWhateverTheOutcome) {
    changesDo("exit 1");
    choose("Reset All Serves");
    press("Reset");
    EXPECT_TRUE(until([&] { return shows("Serves stopped"); }));
}

TEST_F(ResetTest, EscapeCancels) {
    choose("Reset Everything");
    QTest::keyClick(dialog(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_TRUE(changes().empty());
}

TEST_F(ResetTest, ReturnCancelsBecauseCancelIsTheDefault) {
    choose("Reset Everything");
    EXPECT_EQ(dialog()->focusWidget(), button("Cancel"));
    QTest::keyClick(dialog()->focusWidget(), Qt::Key_Return);
    settle();
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_TRUE(changes().empty());
}

TEST_F(ResetTest, TabAndReturnReset) {
    choose("Reset Everything");
    QTest::keyClick(dialog()->focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(dialog()->focusWidget(), button("Reset"));
    QTest::keyClick(dialog()->focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(until([&] { return shows("All shares stopped"); }));
}

} // namespace
} // namespace brevane::test
