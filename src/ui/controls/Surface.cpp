// SPDX-License-Identifier: MIT
#include "Surface.h"

#include "Painting.h"

#include <QPainter>

namespace brevane {

Surface::Surface(ColorRole surfaceColor, double surfaceOpacity, double cornerRadius,
                 QWidget* parent)
    : QWidget(parent), color(surfaceColor), opacity(surfaceOpacity), radius(cornerRadius) {}

Surface* Surface::makeDivider(QWidget* parent) {
    auto* divider = new Surface(&Colors::line, 1, 0, parent);
    divider->setFixedHeight(1);
    return divider;
}

void Surface::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor fill = Colors::thinned(theme().color(color), opacity);
    if (radius > 0)
        drawRoundedBox(painter, rect(), radius, fill);
    else
        painter.fillRect(rect(), fill);
}

} // namespace brevane
