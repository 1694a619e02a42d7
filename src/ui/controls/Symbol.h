// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPixmap>
#include <QRect>
#include <QString>

class QPainter;

namespace brevane {

/// The named symbol in one colour, `size` device-independent pixels wide and high, drawn for a
/// screen of `pixelRatio` pixels to each. Cached. An unknown name gives an empty picture.
[[nodiscard]] QPixmap symbolPixmap(const QString& name, const QColor& color, int size,
                                   double pixelRatio);

/// Draws the named symbol into the middle of `box`, sharp at the painter's resolution.
void drawSymbol(QPainter& painter, const QRect& box, const QString& name, const QColor& color,
                int size);

} // namespace brevane
