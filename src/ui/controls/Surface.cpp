// SPDX-License-Identifier: MIT
#include "Surface.h"

#include "Painting.h"

#include <QPainter>

namespace brevane {

Surface::Surface(ColorRole color, double opacity, double radius, QWidget* parent)
    : QWidget(parent), color_(color), opacity_(opacity), radius_(radius) {}

Surface* Surface::makeDivider(QWidget* parent) {
    auto* divider = new Surface(&Colors::line, 1, 0, parent);
    divider->setFixedHeight(1);
    return divider;
}

void Surface::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor fill = Colors::thinned(theme().color(color_), opacity_);
    if (radius_ > 0)
        drawRoundedBox(painter, rect(), radius_, fill);
    else
        painter.fillRect(rect(), fill);
}

} // namespace brevane
