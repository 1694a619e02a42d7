// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace brevane {

/// Puts a window that is not shown yet in the middle of its screen.
void centre(QWidget& window);

/// Shows a window, if it is minimized too, in front of the others and gives it the keyboard, as far
/// as the window system lets it.
void bringToFront(QWidget& window);

} // namespace brevane
