// SPDX-License-Identifier: MIT
#include "MenuBar.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QVBoxLayout>

#include <string>
#include <vector>

namespace brevane {

class MenuBarTest : public testing::Test {
protected:
    MenuBarTest() {
        fillMenuBar(
            *window.menuBar(), [this] { ++aboutShown; }, [this] { ++quits; });
        field = new QLineEdit("text");
        window.setCentralWidget(field);
        window.show();
        activate(window);
        field->setFocus();
        QCoreApplication::processEvents();
    }

    static void activate(QWidget& widget) {
        widget.activateWindow();
        while (!widget.isActiveWindow())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    static std::string plain(QString text) { return text.remove('&').toStdString(); }

    QAction* item(const std::string& text) {
        for (const QAction* menu : window.menuBar()->actions())
            for (QAction* candidate : menu->menu()->actions())
                if (plain(candidate->text()) == text) return candidate;
        return nullptr;
    }

    void choose(const std::string& text) {
        item(text)->trigger();
        QCoreApplication::processEvents();
    }

    QMainWindow window;
    QLineEdit* field;
    int aboutShown = 0;
    int quits = 0;
};

TEST_F(MenuBarTest, HoldsTheseItemsInThisOrderWithTheseKeys) {
    std::vector<std::string> lines;
    for (const QAction* menu : window.menuBar()->actions()) {
        lines.push_back(plain(menu->text()));
        for (const QAction* action : menu->menu()->actions())
            lines.push_back(
                action->isSeparator()
                    ? "-"
                    : plain(action->text()) + "|" +
                          action->shortcut().toString(QKeySequence::PortableText).toStdString());
    }
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "Brevane", "About Brevane|", "-", "Quit Brevane|Ctrl+Q",       //
                         "Edit", "Undo|Ctrl+Z", "Redo|Ctrl+Shift+Z", "-", "Cut|Ctrl+X", //
                         "Copy|Ctrl+C", "Paste|Ctrl+V", "Select All|Ctrl+A",            //
                         "Window", "Close|Ctrl+W", "Minimize|Ctrl+M"}));
}

TEST_F(MenuBarTest, EveryMenuAndItemHasAMnemonicOfItsOwn) {
    QList<QKeySequence> menus;
    for (const QAction* menu : window.menuBar()->actions()) {
        QList<QKeySequence> items;
        for (const QAction* action : menu->menu()->actions()) {
            if (action->isSeparator()) continue;
            const QKeySequence key = QKeySequence::mnemonic(action->text());
            EXPECT_FALSE(key.isEmpty() || items.contains(key)) << plain(action->text());
            items.append(key);
        }
        const QKeySequence key = QKeySequence::mnemonic(menu->text());
        EXPECT_FALSE(key.isEmpty() || menus.contains(key));
        menus.append(key);
    }
}

TEST_F(MenuBarTest, AboutAndQuitCallTheApplication) {
    choose("About Brevane");
    EXPECT_EQ(aboutShown, 1);
    choose("Quit Brevane");
    EXPECT_EQ(quits, 1);
}

TEST_F(MenuBarTest, EditItemsActOnTheFocusedTextField) {
    choose("Select All");
    EXPECT_EQ(field->selectedText(), "text");
    choose("Copy");
    EXPECT_EQ(QApplication::clipboard()->text(), "text");
    choose("Cut");
    EXPECT_EQ(field->text(), "");
    choose("Paste");
    EXPECT_EQ(field->text(), "text");
    choose("Undo");
    EXPECT_EQ(field->text(), "");
    choose("Redo");
    EXPECT_EQ(field->text(), "text");
}

TEST_F(MenuBarTest, EditItemsWithNothingFocusedDoNothing) {
    field->clearFocus();
    choose("Select All");
    choose("Cut");
    EXPECT_EQ(field->text(), "text");
}

TEST_F(MenuBarTest, CloseClosesAndMinimizeMinimizesTheActiveWindow) {
    QWidget other;
    other.show();
    activate(other);
    choose("Close");
    EXPECT_FALSE(other.isVisible());
    EXPECT_TRUE(window.isVisible());
    activate(window);
    choose("Minimize");
    EXPECT_TRUE(window.isMinimized());
}

} // namespace brevane
