// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include "Surface.h"

#include <QAccessible>
#include <QMenuBar>
#include <QTextEdit>

namespace brevane::test {
namespace {

class KeyboardTest : public WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        publish({entry("/a"), entry("/b", true)});
        service->lastError.set("it went wrong");
        settle();
        auto* picker = find<PopUp>("Source Type");
        picker->setCurrentIndex(picker->findText("File"));
        find<QLineEdit>("File Path")->setText("/srv/site");
        settle();
    }

    static std::string focusName() {
        const QWidget* widget = QApplication::focusWidget();
        if (widget == nullptr) return "nothing";
        if (!widget->accessibleName().isEmpty()) return widget->accessibleName().toStdString();
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        return button ? button->text().toStdString() : widget->metaObject()->className();
    }

    // The controls that a key visits until it returns to the first.
    std::vector<std::string> roundWith(Qt::Key key) {
        std::vector<std::string> names;
        const QWidget* first = QApplication::focusWidget();
        do {
            names.push_back(focusName());
            QTest::keyClick(QApplication::focusWidget(), key);
        } while (QApplication::focusWidget() != first && names.size() < 40);
        return names;
    }

    const std::vector<std::string> order{refreshButton,
                                         "Reset Shares",
                                         "Error",
                                         "Clear",
                                         "Copy URL",
                                         "Stop share",
                                         "Copy URL",
                                         "Stop share",
                                         "Serve",
                                         "Source Type",
                                         "File Path",
                                         "Browse…",
                                         "URL Path (optional)",
                                         "Run in background",
                                         "Preview",
                                         "Start Serve"};
};

TEST_F(KeyboardTest, TabVisitsEveryControlInTheOrderOfReading) {
    button(refreshButton)->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(roundWith(Qt::Key_Tab), order);
}

TEST_F(KeyboardTest, TheSourceFieldHasTheKeyboardFirst) {
    EXPECT_EQ(focusName(), "File Path");
}

TEST_F(KeyboardTest, BacktabVisitsThemInTheOtherOrder) {
    button("Start Serve")->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(roundWith(Qt::Key_Backtab), std::vector(order.rbegin(), order.rend()));
}

TEST_F(KeyboardTest, EveryControlHasAName) {
    for (const auto* widget : view->findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->focusPolicy() == Qt::NoFocus) continue;
        if (widget == &list()) continue;
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        EXPECT_FALSE(widget->accessibleName().isEmpty() &&
                     (button == nullptr || button->text().isEmpty()))
            << widget->metaObject()->className();
    }
}

TEST_F(KeyboardTest, AScreenReaderGoesThroughThePanesInTheOrderOfReading) {
    std::vector<std::string> names;
    const std::function<void(QAccessibleInterface*)> visit = [&](QAccessibleInterface* node) {
        const auto name = node->text(QAccessible::Name).toStdString();
        if (name == refreshButton || name == "Start Serve") names.push_back(name);
        for (int i = 0; i < node->childCount(); ++i)
            visit(node->child(i));
    };
    visit(QAccessible::queryAccessibleInterface(view.get()));
    EXPECT_EQ(names, (std::vector<std::string>{refreshButton, "Start Serve"}));
}

TEST_F(KeyboardTest, ThePopUpIsLabelledByItsTitle) {
    auto* picker = QAccessible::queryAccessibleInterface(find<PopUp>("Source Type"));
    const auto relations = picker->relations(QAccessible::Label);
    ASSERT_EQ(relations.size(), 1);
    EXPECT_EQ(relations[0].first->text(QAccessible::Name), "SOURCE TYPE");
}

TEST_F(KeyboardTest, ErrorsAndToastsAreNotifications) {
    view->showToast("URL copied!");
    for (const char* text : {"it went wrong", "URL copied!"}) {
        auto* alert = QAccessible::queryAccessibleInterface(find<Surface>(text));
        ASSERT_NE(alert, nullptr) << text;
        EXPECT_EQ(alert->role(), QAccessible::Notification) << text;
        EXPECT_EQ(alert->text(QAccessible::Name), text);
    }
}

TEST_F(KeyboardTest, FieldsAreDescribedByTheirHints) {
    EXPECT_EQ(find<QLineEdit>("File Path")->accessibleDescription(),
              "Serves a single file. Supports any file type \u2014 HTML, images, PDFs, etc.");
    EXPECT_EQ(find<QLineEdit>("URL Path (optional)")->accessibleDescription(),
              "Leave as / to use the filename as the path (e.g. /file.html).");
}

TEST_F(KeyboardTest, TheModesAreANamedGroup) {
    auto* group = QAccessible::queryAccessibleInterface(button("Serve")->parentWidget());
    EXPECT_EQ(group->role(), QAccessible::Grouping);
    EXPECT_EQ(group->text(QAccessible::Name), "Mode");
}

TEST_F(KeyboardTest, TheResetButtonSaysThatItHasAMenu) {
    auto* reset = QAccessible::queryAccessibleInterface(button("Reset Shares"));
    EXPECT_TRUE(reset->state().hasPopup);
    EXPECT_EQ(reset->role(), QAccessible::ButtonMenu);
    // doAction() returns at once, not when the menu closes.
    reset->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    QApplication::activePopupWidget()->close();
}

TEST_F(KeyboardTest, TheFocusStaysAtTheStartButton) {
    for (const char* answer : {"exit 1", "exit 0"}) {
        changesDo(answer);
        button("Start Serve")->setFocus(Qt::TabFocusReason);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        EXPECT_EQ(focusName(), "Starting…");
        ASSERT_TRUE(until([&] { return button("Start Serve") != nullptr; }));
        EXPECT_EQ(focusName(), "Start Serve");
    }
    ASSERT_FALSE(button("Start Serve")->isEnabled());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(focusName(), "Run in background");
}

TEST_F(KeyboardTest, TheLettersOfMenusAreUnderlinedWhileAltIsHeld) {
    QMenuBar bar;
    bar.addMenu("&Edit");
    bar.resize(bar.sizeHint());
    bar.show();
    settle();
    const QImage without = bar.grab().toImage();
    QTest::keyPress(view.get(), Qt::Key_Alt);
    EXPECT_NE(bar.grab().toImage(), without);
    QTest::keyRelease(view.get(), Qt::Key_Alt, Qt::AltModifier);
    EXPECT_EQ(bar.grab().toImage(), without);
}

TEST_F(KeyboardTest, ArrowsChooseTheMode) {
    button("Serve")->setFocus(Qt::TabFocusReason);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    EXPECT_EQ(focusName(), "Funnel");
    settle();
    EXPECT_NE(button("Start Funnel"), nullptr);
}

TEST_F(KeyboardTest, SpaceAndReturnPressARowsButtons) {
    row(0)->stopButton()->setFocus(Qt::TabFocusReason);
    for (const auto key : {Qt::Key_Space, Qt::Key_Return}) {
        QTest::keyClick(row(0)->stopButton(), key);
        settle();
        ASSERT_NE(dialog(), nullptr);
        QTest::keyClick(dialog(), Qt::Key_Escape);
        settle();
        EXPECT_EQ(dialog(), nullptr);
    }
}

TEST_F(KeyboardTest, WhatHasTheFocusLooksDifferent) {
    view->resize(800, 900);
    // By a key press, so that the window shows the focus.
    button("Start Serve")->setFocus(Qt::TabFocusReason);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    for (const std::string& name : order) {
        ASSERT_EQ(focusName(), name);
        const QWidget* control = QApplication::focusWidget();
        // Includes the surroundings, where a ring may be drawn.
        const QRect around =
            QRect(control->mapTo(view.get(), QPoint()), control->size()).adjusted(-4, -4, 4, 4);
        settle();
        const QImage with = view->grab(around).toImage();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        settle();
        EXPECT_NE(view->grab(around).toImage(), with) << name;
    }
}

} // namespace
} // namespace brevane::test
