// SPDX-License-Identifier: MIT
#include "Painting.h"

#include "Theme.h"

#include <QPainter>

namespace brevane {

void drawRoundedBox(QPainter& painter, QRectF rect, double radius, const QBrush& fill,
                    const QColor& line, double lineWidth) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(line.isValid() ? QPen(line, lineWidth) : QPen(Qt::NoPen));
    if (line.isValid()) {
        const double half = lineWidth / 2;
        rect.adjust(half, half, -half, -half);
    }
    painter.drawRoundedRect(rect, radius, radius);
    painter.restore();
}

void drawFocusRing(QPainter& painter, const QRectF& rect, double radius) {
    drawRoundedBox(painter, rect, radius, Qt::NoBrush, theme().color(&Colors::focus), 2);
}

} // namespace brevane
