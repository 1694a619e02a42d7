// SPDX-License-Identifier: MIT
#include "MenuBar.h"

#include "AboutPanel.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>

#include <initializer_list>
#include <string>
#include <vector>

namespace brevane::test {
namespace {

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

    std::vector<QAction*> editItems() {
        std::vector<QAction*> items;
        for (const char* text : {"Undo", "Redo", "Cut", "Copy", "Paste", "Select All"})
            items.push_back(item(text));
        return items;
    }

    static void press(QWidget& widget, const QAction& chosen) {
        const QKeyCombination keys = chosen.shortcut()[0];
        QTest::keyClick(&widget, keys.key(), keys.keyboardModifiers());
        QCoreApplication::processEvents();
    }

    // Triggers each Edit item by its key and from its menu, with this widget focused.
    void useEveryEditItem(QWidget& focused) {
        for (QAction* edit : editItems()) {
            press(focused, *edit);
            edit->trigger();
            QCoreApplication::processEvents();
        }
    }

    // Replaces the field with another widget and focuses it.
    void giveFocus(QWidget* widget) {
        window.setCentralWidget(widget);
        QCoreApplication::processEvents();
        widget->setFocus();
        ASSERT_TRUE(widget->hasFocus());
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

TEST_F(MenuBarTest, EditItemsActOnAFocusedTextThatCanOnlyBeRead) {
    auto* text = new QTextEdit("read");
    text->setReadOnly(true);
    giveFocus(text);
    choose("Select All");
    choose("Copy");
    EXPECT_EQ(QApplication::clipboard()->text(), "read");
    QApplication::clipboard()->setText("other");
    for (const char* change : {"Cut", "Paste", "Undo", "Redo"})
        choose(change);
    EXPECT_EQ(text->toPlainText(), "read");
    EXPECT_EQ(QApplication::clipboard()->text(), "other");
}

TEST_F(MenuBarTest, EditItemsDoNotChangeAFieldThatCanOnlyBeRead) {
    field->setReadOnly(true);
    for (const char* change : {"Select All", "Cut", "Paste", "Undo", "Redo"})
        choose(change);
    EXPECT_EQ(field->text(), "text");
    choose("Copy");
    EXPECT_EQ(QApplication::clipboard()->text(), "text");
}

TEST_F(MenuBarTest, EditItemsAndTheirKeysDoNothingToWhatHoldsNoText) {
    for (QWidget* focused : std::initializer_list<QWidget*>{
             new QPushButton, new QToolButton, new QCheckBox, new QComboBox, new QListView,
             new QScrollArea, new QSlider, new QLabel("label"), new QWidget}) {
        focused->setFocusPolicy(Qt::StrongFocus);
        giveFocus(focused);
        QApplication::clipboard()->setText("clipboard");
        useEveryEditItem(*focused);
        EXPECT_TRUE(focused->hasFocus()) << focused->metaObject()->className();
        EXPECT_EQ(QApplication::clipboard()->text(), "clipboard")
            << focused->metaObject()->className();
    }
}

TEST_F(MenuBarTest, EditItemsAndTheirKeysDoNothingWhileNothingHasTheFocus) {
    field->clearFocus();
    useEveryEditItem(window);
    EXPECT_EQ(field->text(), "text");
}

TEST_F(MenuBarTest, EditItemsAndTheirKeysDoNothingToADialog) {
    QDialog dialog(&window);
    dialog.setFocusPolicy(Qt::ClickFocus);
    dialog.show();
    activate(dialog);
    dialog.setFocus();
    ASSERT_TRUE(dialog.hasFocus());
    useEveryEditItem(dialog);
    EXPECT_TRUE(dialog.isVisible());
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

TEST_F(MenuBarTest, MinimizeLeavesTheAboutPanelAlone) {
    AboutPanel panel(&window);
    panel.show();
    activate(panel);
    choose("Minimize");
    EXPECT_FALSE(panel.isMinimized());
    EXPECT_FALSE(window.isMinimized());
}

TEST_F(MenuBarTest, MacOSRecognizesEditItemsByTheirTexts) {
    for (const char* text : {"Cut", "Copy", "Paste", "Select All"})
        EXPECT_EQ(item(text)->menuRole(), QAction::TextHeuristicRole) << text;
    EXPECT_EQ(item("Close")->menuRole(), QAction::NoRole);
}

} // namespace
} // namespace brevane::test
