// SPDX-License-Identifier: MIT
#pragma once

#include <QBrush>
#include <QColor>
#include <QRectF>

class QPainter;

namespace brevane {

/// A filled rounded rectangle, with an inner border if `line` is a valid colour.
void drawRoundedBox(QPainter& painter, QRectF rect, double radius, const QBrush& fill,
                    const QColor& line = {}, double lineWidth = 1);

/// The ring of the focused control, just inside `rect`.
void drawFocusRing(QPainter& painter, const QRectF& rect, double radius);

} // namespace brevane
