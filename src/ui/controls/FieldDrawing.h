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

/// Ground, edge and focus of a single-line text field.
void drawTextField(QPainter& painter, const QStyleOption& option);

/// The square of a check box, with its mark when on.
void drawCheckMark(QPainter& painter, const QStyleOption& option);

/// A pop-up button without its text.
void drawPopUpButton(QPainter& painter, const QStyleOptionComplex& option);

/// The text of a pop-up button, shortened in the middle where it does not fit `box`.
void drawPopUpLabel(QPainter& painter, const QStyleOptionComboBox& option, const QRect& box);

/// A thin scroll bar without buttons; `handle` is where its handle is.
void drawScrollBar(QPainter& painter, const QStyleOptionComplex& option, const QRect& handle);

/// Where the parts of a scroll bar without buttons are.
[[nodiscard]] QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part);

} // namespace brevane
