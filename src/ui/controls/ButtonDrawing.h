// SPDX-License-Identifier: MIT
#pragma once

class QPainter;
class QStyleOptionButton;
class QStyleOptionToolButton;

namespace brevane {

class IconButton;
class PushButton;

/// One of the window's text buttons.
void drawPushButton(QPainter& painter, const QStyleOptionButton& option, const PushButton& button);

/// A button of a dialog: outlined, or filled with red if it destroys something.
void drawDialogButton(QPainter& painter, const QStyleOptionButton& option, bool isDestructive);

/// A button that shows a symbol.
void drawIconButton(QPainter& painter, const QStyleOptionToolButton& option,
                    const IconButton& button);

} // namespace brevane
