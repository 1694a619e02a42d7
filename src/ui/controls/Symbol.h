// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPixmap>
#include <QRect>
#include <QString>

class QPainter;

namespace brevane {

/// The named symbol in one colour, `size` device-independent pixels wide and high, rendered for a
/// screen with this pixel ratio. Cached. Returns a transparent pixmap for an unknown name.
[[nodiscard]] QPixmap symbolPixmap(const QString& name, const QColor& color, int size,
                                   double pixelRatio);

/// Draws the named symbol centred in `box`, at the painter's resolution.
void drawSymbol(QPainter& painter, const QRect& box, const QString& name, const QColor& color,
                int size);

} // namespace brevane
