// SPDX-License-Identifier: MIT
#include "IconButton.h"

#include "Painting.h"
#include "Spinner.h"
#include "Symbol.h"

#include <QPainter>
#include <QTimerEvent>

namespace brevane {

IconButton::IconButton(const QString& symbol, const QString& toolTip, ColorRole symbolColor,
                       QWidget* parent)
    : Button(parent), name(symbol), color(symbolColor) {
    setToolTip(toolTip);
    setAccessibleName(toolTip);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(&theme(), &Theme::changed, this, [this] { updateGeometry(); });
}

QSize IconButton::sizeHint() const {
    const int side = theme().symbolSize() + theme().scaled(bordered ? 12 : 10);
    return {side, side};
}

void IconButton::setBusy(bool on) {
    if (busy == on) return;
    busy = on;
    if (busy)
        timer.start(Spinner::intervalMs, this);
    else
        timer.stop();
    update();
}

void IconButton::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer.timerId()) return Button::timerEvent(event);
    step = (step + 1) % Spinner::steps;
    update();
}

void IconButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Colors& c = theme().colors();
    const bool hovered = isHovered();
    if (bordered) drawRoundedBox(painter, rect(), Theme::cornerRadius, c.button, c.outline);
    if (isDown() || hovered)
        drawRoundedBox(painter, rect(), Theme::cornerRadius,
                       Colors::thinned(c.text, isDown() ? 0.16 : 0.08));
    if (showsFocus()) drawFocusRing(painter, rect(), Theme::cornerRadius);
    if (busy) {
        QRectF box(0, 0, theme().scaled(14), theme().scaled(14));
        box.moveCenter(QRectF(rect()).center());
        return Spinner::draw(painter, box, step, c.secondary);
    }
    const bool plain = !hovered && !isDown() && !showsFocus();
    const double opacity = isEnabled() ? (plain ? symbolOpacity : 1) : 0.4;
    drawSymbol(painter, rect(), name, Colors::thinned(theme().color(color), opacity),
               theme().symbolSize());
}

} // namespace brevane
