// SPDX-License-Identifier: MIT
#include "MenuDrawing.h"

#include "Painting.h"
#include "Symbol.h"
#include "Theme.h"

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <cstddef>
#include <span>

namespace brevane {

namespace {

constexpr auto destructiveProperty = "brevaneDestructive";

bool destroys(const QStyleOptionMenuItem& item, const QWidget* widget) {
    const auto* menu = qobject_cast<const QMenu*>(widget);
    const QAction* action = menu ? menu->actionAt(item.rect.center()) : nullptr;
    return action && isDestructive(*action);
}

int mnemonicFlag() {
    return theme().showsMnemonics() ? Qt::TextShowMnemonic : Qt::TextHideMnemonic;
}

} // namespace

void setDestructive(QObject& item) {
    item.setProperty(destructiveProperty, true);
}

bool isDestructive(const QObject& item) {
    return item.property(destructiveProperty).toBool();
}

void drawMenuTitle(QPainter& painter, const QStyleOptionMenuItem& item) {
    const Colors& c = theme().colors();
    painter.fillRect(item.rect, c.bar);
    if (item.state & QStyle::State_Selected)
        drawRoundedBox(painter, item.rect.adjusted(1, 2, -1, -2), 5, Colors::thinned(c.text, 0.1));
    painter.setPen(c.text);
    painter.drawText(item.rect, Qt::AlignCenter | mnemonicFlag(), item.text);
}

void drawMenuGround(QPainter& painter, const QStyleOption& option) {
    const Colors& c = theme().colors();
    drawRoundedBox(painter, option.rect, Theme::cornerRadius, c.popup, c.popupEdge);
}

QRegion menuShape(const QSize& size) {
    QImage drawing(size, QImage::Format_Alpha8);
    drawing.fill(0);
    QPainter painter(&drawing);
    drawRoundedBox(painter, drawing.rect(), Theme::cornerRadius, Qt::black, Qt::black);
    painter.end();
    QRegion shape;
    for (int y = 0; y < drawing.height(); ++y) {
        const std::span line(drawing.constScanLine(y), static_cast<std::size_t>(drawing.width()));
        const auto first = std::ranges::find_if(line, [](uchar alpha) { return alpha > 0; });
        const int clear = static_cast<int>(first - line.begin());
        shape += QRect(clear, y, drawing.width() - 2 * clear, 1);
    }
    return shape;
}

void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& item, const QWidget* menu) {
    const Colors& c = theme().colors();
    const QRect& box = item.rect;
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        painter.fillRect(QRect(box.left() + 12, box.center().y(), box.width() - 24, 1), c.line);
        return;
    }
    const bool enabled = item.state & QStyle::State_Enabled;
    const bool selected = enabled && (item.state & QStyle::State_Selected);
    const bool destructive = destroys(item, menu);
    QColor ink = enabled ? c.text : c.secondary;
    if (destructive) ink = c.red;
    if (selected) {
        drawRoundedBox(painter, box.adjusted(5, 0, -5, 0), 5,
                       destructive ? c.redFill : c.accentFill);
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
    painter.drawText(text, int(Qt::AlignVCenter | Qt::AlignLeft) | mnemonicFlag(), parts.value(0));
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignRight, parts.value(1));
}

} // namespace brevane
