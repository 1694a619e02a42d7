// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <QAccessible>
#include <QAccessibleInterface>

namespace brevane::test {
namespace {

class AccessibilityTest : public WindowTest {};

// A screen reader counts the children and requests one later, when there may be fewer.
TEST_F(AccessibilityTest, NoWidgetHasAChildPastItsLast) {
    publish(serves(3));
    press("Stop share");
    int asked = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        QAccessibleInterface* element = QAccessible::queryAccessibleInterface(widget);
        if (element == nullptr) continue;
        const int count = element->childCount();
        for (const int index : {count, count + 1, count + 100})
            EXPECT_EQ(element->child(index), nullptr)
                << widget->metaObject()->className() << " " << index << " of " << count;
        ++asked;
    }
    EXPECT_GT(asked, 50);
}

TEST_F(AccessibilityTest, AMenuIsTheChildOfItsButton) {
    QAccessibleInterface* more = QAccessible::queryAccessibleInterface(button("Reset Shares"));
    ASSERT_EQ(more->childCount(), 1);
    QAccessibleInterface* menu = more->child(0);
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->role(), QAccessible::PopupMenu);
    EXPECT_EQ(more->indexOfChild(menu), 0);
    EXPECT_TRUE(menu->state().invisible);
    press("Reset Shares");
    EXPECT_FALSE(menu->state().invisible);
    ASSERT_EQ(menu->childCount(), 3);
    EXPECT_EQ(menu->child(0)->text(QAccessible::Name), "Reset All Serves");
}

} // namespace
} // namespace brevane::test
