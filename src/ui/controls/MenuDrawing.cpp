// SPDX-License-Identifier: MIT
#include "MenuDrawing.h"

#include "Painting.h"
#include "Symbol.h"
#include "Theme.h"

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QStyleOption>

namespace brevane {

namespace {

constexpr auto destructiveProperty = "brevaneDestructive";

bool isDestructive(const QStyleOptionMenuItem& item, const QWidget* widget) {
    const auto* menu = qobject_cast<const QMenu*>(widget);
    const QAction* action = menu ? menu->actionAt(item.rect.center()) : nullptr;
    return action && action->property(destructiveProperty).toBool();
}

} // namespace

void setDestructive(QAction& action) {
    action.setProperty(destructiveProperty, true);
}

void drawMenuTitle(QPainter& painter, const QStyleOptionMenuItem& item) {
    const Colors& c = theme().colors();
    painter.fillRect(item.rect, c.bar);
    if (item.state & QStyle::State_Selected)
        drawRoundedBox(painter, item.rect.adjusted(1, 2, -1, -2), 5, Colors::thinned(c.text, 0.1));
    painter.setPen(c.text);
    painter.drawText(item.rect, Qt::AlignCenter | Qt::TextHideMnemonic, item.text);
}

void drawMenuGround(QPainter& painter, const QStyleOption& option) {
    const Colors& c = theme().colors();
    painter.fillRect(option.rect, c.popup);
    drawRoundedBox(painter, option.rect, 0, c.popup, c.outline);
}

void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& item, const QWidget* menu) {
    const Colors& c = theme().colors();
    const QRect& box = item.rect;
    // A pop-up button's list has a ground of its own otherwise.
    painter.fillRect(box, c.popup);
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        painter.fillRect(QRect(box.left() + 12, box.center().y(), box.width() - 24, 1), c.line);
        return;
    }
    const bool enabled = item.state & QStyle::State_Enabled;
    const bool selected = enabled && (item.state & QStyle::State_Selected);
    const bool destructive = isDestructive(item, menu);
    QColor ink = enabled ? c.text : c.secondary;
    if (destructive) ink = c.red;
    if (selected) {
        drawRoundedBox(painter, box.adjusted(5, 0, -5, 0), 5, destructive ? c.redFill : c.blueFill);
        ink = c.onFill;
    }
    painter.setPen(ink);
    painter.setFont(item.font);
    const int markWidth = item.menuHasCheckableItems ? 26 : 14;
    if (item.checked) {
        const QRect mark(box.left() + 8, box.top(), 16, box.height());
        drawSymbol(painter, QStyle::visualRect(item.direction, box, mark),
                   QStringLiteral("checkmark"), ink, 13);
    }
    const QRect text = QStyle::visualRect(item.direction, box, box.adjusted(markWidth, 0, -14, 0));
    const auto parts = item.text.split(QLatin1Char('\t'));
    painter.drawText(text, int(Qt::AlignVCenter | Qt::AlignLeft) | Qt::TextHideMnemonic,
                     parts.value(0));
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignRight, parts.value(1));
}

} // namespace brevane
