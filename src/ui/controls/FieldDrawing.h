// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QStyle>

class QPainter;
class QStyleOption;
class QStyleOptionComboBox;
class QStyleOptionComplex;
class QStyleOptionSlider;

namespace brevane {

/// Background, edge and focus ring of a single-line text field.
void drawTextField(QPainter& painter, const QStyleOption& option);

/// The square of a check box, with its mark if checked.
void drawCheckMark(QPainter& painter, const QStyleOption& option);

/// A pop-up button without its text.
void drawPopUpButton(QPainter& painter, const QStyleOptionComplex& option);

/// The text of a pop-up button, elided in the middle if it does not fit `box`.
void drawPopUpLabel(QPainter& painter, const QStyleOptionComboBox& option, const QRect& box);

/// A thin scroll bar without buttons; `handle` is its handle's rectangle.
void drawScrollBar(QPainter& painter, const QStyleOptionComplex& option, const QRect& handle);

/// The rectangle of one part of a scroll bar without buttons.
[[nodiscard]] QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part);

} // namespace brevane
