// SPDX-License-Identifier: MIT
#pragma once

#include <QBrush>
#include <QColor>
#include <QRectF>

class QPainter;

namespace brevane {

/// A rounded rectangle: filled, and where `line` is a colour edged with it on the inside.
void drawRoundedBox(QPainter& painter, QRectF rect, double radius, const QBrush& fill,
                    const QColor& line = {}, double lineWidth = 1);

/// The ring around what has the keyboard, just inside `rect`.
void drawFocusRing(QPainter& painter, const QRectF& rect, double radius);

} // namespace brevane
