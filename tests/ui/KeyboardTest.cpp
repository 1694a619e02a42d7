// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include "Surface.h"

#include <QAccessible>
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

    // The controls that a key visits until it is back at the first.
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

TEST_F(KeyboardTest, ErrorsAndToastsAreAlerts) {
    view->showToast("URL copied!");
    for (const char* text : {"it went wrong", "URL copied!"}) {
        auto* alert = QAccessible::queryAccessibleInterface(find<Surface>(text));
        ASSERT_NE(alert, nullptr) << text;
        EXPECT_EQ(alert->role(), QAccessible::AlertMessage) << text;
        EXPECT_EQ(alert->text(QAccessible::Name), text);
    }
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
    for (QWidget* control :
         {static_cast<QWidget*>(button(refreshButton)), static_cast<QWidget*>(row(0)->copyButton()),
          static_cast<QWidget*>(button("Serve")), static_cast<QWidget*>(find<PopUp>("Source Type")),
          static_cast<QWidget*>(find<QLineEdit>("File Path")),
          static_cast<QWidget*>(find<QCheckBox>("Run in background")),
          static_cast<QWidget*>(button("Start Serve"))}) {
        QWidget* other = control == button("Clear") ? button("Reset Shares") : button("Clear");
        other->setFocus(Qt::TabFocusReason);
        QTest::keyClick(other, Qt::Key_Shift);
        settle();
        const QImage without = control->grab().toImage();
        // By the key alone, so that the window knows that the keyboard is in use.
        for (int steps = 0; steps < 50 && !control->hasFocus(); ++steps)
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        settle();
        EXPECT_NE(control->grab().toImage(), without) << focusName();
    }
}

} // namespace
} // namespace brevane::test
