// SPDX-License-Identifier: MIT
#include "FieldDrawing.h"

#include "Painting.h"
#include "Symbol.h"
#include "Theme.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace brevane {

void drawTextField(QPainter& painter, const QStyleOption& option) {
    const Colors& c = theme().colors();
    drawRoundedBox(painter, option.rect, Theme::cornerRadius, c.field, c.outline);
    if (option.state & QStyle::State_HasFocus)
        drawFocusRing(painter, option.rect, Theme::cornerRadius);
}

void drawCheckMark(QPainter& painter, const QStyleOption& option) {
    const Colors& c = theme().colors();
    const bool on = option.state & QStyle::State_On;
    drawRoundedBox(painter, option.rect, 4, on ? c.accentFill : c.button,
                   on ? c.accentFill : c.outline);
    if (on)
        drawSymbol(painter, option.rect, QStringLiteral("checkmark"), c.onFill,
                   option.rect.width() * 4 / 5);
}

void drawPopUpButton(QPainter& painter, const QStyleOptionComplex& option) {
    const Colors& c = theme().colors();
    const QRect& box = option.rect;
    const bool down = option.state & (QStyle::State_On | QStyle::State_Sunken);
    drawRoundedBox(painter, box, Theme::cornerRadius, c.button, c.outline);
    if (down) drawRoundedBox(painter, box, Theme::cornerRadius, Colors::thinned(c.text, 0.06));
    constexpr int side = 18;
    const QRect arrows =
        QStyle::visualRect(option.direction, box,
                           {box.right() - side - 4, box.center().y() - side / 2 + 1, side, side});
    drawRoundedBox(painter, arrows, 5, c.accentFill);
    drawSymbol(painter, arrows, QStringLiteral("chevron.up.chevron.down"), c.onFill, 14);
    if ((option.state & QStyle::State_HasFocus) &&
        (option.state & QStyle::State_KeyboardFocusChange))
        drawFocusRing(painter, box, Theme::cornerRadius);
}

void drawPopUpLabel(QPainter& painter, const QStyleOptionComboBox& option, const QRect& box) {
    painter.setPen(
        theme().color(option.state & QStyle::State_Enabled ? &Colors::text : &Colors::secondary));
    painter.drawText(
        box, Qt::AlignLeft | Qt::AlignVCenter,
        painter.fontMetrics().elidedText(option.currentText, Qt::ElideMiddle, box.width()));
}

void drawScrollBar(QPainter& painter, const QStyleOptionComplex& option, const QRect& handle) {
    if (!(option.state & QStyle::State_Enabled)) return;
    const bool active = option.activeSubControls & QStyle::SC_ScrollBarSlider;
    drawRoundedBox(painter, QRectF(handle).adjusted(2, 2, -2, -2), 3,
                   Colors::thinned(theme().color(&Colors::text), active ? 0.45 : 0.28));
}

QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part) {
    constexpr int shortestHandle = 28;
    const bool vertical = option.orientation == Qt::Vertical;
    const int length = vertical ? option.rect.height() : option.rect.width();
    const int thickness = vertical ? option.rect.width() : option.rect.height();
    const qint64 range = qint64{option.maximum} - option.minimum + option.pageStep;
    const int handle =
        range > 0 ? std::min(length, std::max(shortestHandle,
                                              int(qint64{length} * option.pageStep / range)))
                  : length;
    const int start = QStyle::sliderPositionFromValue(
        option.minimum, option.maximum, option.sliderPosition, length - handle, option.upsideDown);
    const auto stretch = [&](int from, int size) {
        return vertical ? QRect(0, from, thickness, size) : QRect(from, 0, size, thickness);
    };
    switch (part) {
    case QStyle::SC_ScrollBarSlider:
        return stretch(start, handle);
    case QStyle::SC_ScrollBarSubPage:
        return stretch(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return stretch(start + handle, length - start - handle);
    case QStyle::SC_ScrollBarGroove:
        return option.rect;
    default:
        return {};
    }
}

} // namespace brevane
