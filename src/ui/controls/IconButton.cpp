// SPDX-License-Identifier: MIT
#include "IconButton.h"

#include "Painting.h"
#include "Symbol.h"

#include <QPainter>

namespace brevane {

IconButton::IconButton(const QString& symbol, const QString& toolTip, ColorRole symbolColor,
                       QWidget* parent)
    : QAbstractButton(parent), name(symbol), color(symbolColor) {
    setToolTip(toolTip);
    setAccessibleName(toolTip);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(&theme(), &Theme::changed, this, [this] { updateGeometry(); });
}

QSize IconButton::sizeHint() const {
    const int side = theme().symbolSize() + theme().scaled(bordered ? 12 : 10);
    return {side, side};
}

void IconButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const Colors& c = theme().colors();
    const bool hovered = underMouse() && isEnabled();
    if (bordered) drawRoundedBox(painter, rect(), Theme::cornerRadius, c.button, c.outline);
    if (isDown() || hovered)
        drawRoundedBox(painter, rect(), Theme::cornerRadius,
                       Colors::thinned(c.text, isDown() ? 0.16 : 0.08));
    if (hasFocus()) drawFocusRing(painter, rect(), Theme::cornerRadius);
    const bool plain = !hovered && !isDown() && !hasFocus();
    const double opacity = isEnabled() ? (plain ? symbolOpacity : 1) : 0.4;
    drawSymbol(painter, rect(), name, Colors::thinned(theme().color(color), opacity),
               theme().symbolSize());
}

} // namespace brevane
