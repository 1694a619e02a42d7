// SPDX-License-Identifier: MIT
#include "PushButton.h"

#include "Painting.h"
#include "Spinner.h"
#include "Symbol.h"

#include <QPainter>
#include <QStyle>
#include <QTimerEvent>

#include <algorithm>

namespace brevane {

namespace {

constexpr int indicatorSide = 16;

} // namespace

PushButton::PushButton(Kind buttonKind, const QString& text, QWidget* parent)
    : Button(parent), kind(buttonKind), tint(kind == Kind::prominent ? &Colors::blueFill
                                             : kind == Kind::link    ? &Colors::blue
                                                                     : &Colors::text) {
    setText(text);
    const bool prominent = kind == Kind::prominent;
    setSizePolicy(prominent ? QSizePolicy::Minimum : QSizePolicy::Fixed, QSizePolicy::Fixed);
    const auto style = prominent            ? TextStyle::button
                       : kind == Kind::link ? TextStyle::caption
                                            : TextStyle::body;
    setFont(theme().font(style));
    connect(&theme(), &Theme::changed, this, [this, style] { setFont(theme().font(style)); });
}

void PushButton::setSymbol(const QString& name) {
    if (symbolName == name) return;
    symbolName = name;
    updateGeometry();
    update();
}

void PushButton::setTint(ColorRole role) {
    tint = role;
    update();
}

void PushButton::setBusy(bool on) {
    if (busy == on) return;
    busy = on;
    if (busy)
        timer.start(Spinner::intervalMs, this);
    else
        timer.stop();
    update();
}

int PushButton::leadingWidth() const {
    return symbolName.isEmpty() && !busy ? 0 : std::max(indicatorSide, theme().symbolSize(12)) + 6;
}

QSize PushButton::sizeHint() const {
    const int textWidth = fontMetrics().horizontalAdvance(text());
    const int padding = kind == Kind::link ? 4 : 14;
    const int height =
        kind == Kind::prominent ? theme().scaled(34) : theme().scaled(kind == Kind::link ? 20 : 28);
    return {textWidth + leadingWidth() + 2 * padding, std::max(height, fontMetrics().height() + 4)};
}

void PushButton::drawGround(QPainter& painter) const {
    const Colors& c = theme().colors();
    const bool hovered = isHovered();
    if (kind == Kind::prominent) {
        drawRoundedBox(painter, rect(), Theme::cornerRadius + 1, theme().color(tint));
        if (isDown() || hovered)
            drawRoundedBox(painter, rect(), Theme::cornerRadius + 1,
                           QColor(0, 0, 0, isDown() ? 46 : 18));
    } else {
        if (kind == Kind::plain)
            drawRoundedBox(painter, rect(), Theme::cornerRadius, c.button, c.outline);
        if (isDown() || hovered)
            drawRoundedBox(painter, rect(), Theme::cornerRadius,
                           Colors::thinned(c.text, isDown() ? 0.14 : 0.06));
    }
}

void PushButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(isEnabled() || busy ? 1 : 0.45);
    drawGround(painter);
    const Colors& c = theme().colors();
    const QColor ink = kind == Kind::prominent ? c.onFill : theme().color(tint);
    const int textWidth = fontMetrics().horizontalAdvance(text());
    const int lead = leadingWidth();
    const QRect content((width() - textWidth - lead) / 2, 0, textWidth + lead, height());
    if (lead > 0) {
        const int side = lead - 6;
        const QRect box = QStyle::visualRect(layoutDirection(), content,
                                             {content.x(), (height() - side) / 2, side, side});
        if (busy)
            Spinner::draw(painter, QRectF(box).adjusted(1.5, 1.5, -1.5, -1.5), step, ink);
        else
            drawSymbol(painter, box, symbolName, ink, theme().symbolSize(12));
    }
    painter.setPen(ink);
    const QRect textBox =
        QStyle::visualRect(layoutDirection(), content, content.adjusted(lead, 0, 1, 0));
    painter.drawText(textBox, Qt::AlignVCenter | Qt::AlignLeft, text());
    if (showsFocus()) {
        // A ring inside a filled button would not stand out against its colour.
        if (kind == Kind::prominent)
            drawRoundedBox(painter, rect().adjusted(2, 2, -2, -2), Theme::cornerRadius - 1,
                           Qt::NoBrush, c.onFill, 1.5);
        else
            drawFocusRing(painter, rect(), Theme::cornerRadius);
    }
}

void PushButton::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer.timerId()) return Button::timerEvent(event);
    step = (step + 1) % Spinner::steps;
    update();
}

} // namespace brevane
