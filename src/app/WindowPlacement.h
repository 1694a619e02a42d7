// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace brevane {

/// Centres a window that is not shown yet on its screen.
void centre(QWidget& window);

/// Shows a window, even if it is minimized, in front of the others and gives it the keyboard, as
/// far as the window system allows.
void bringToFront(QWidget& window);

} // namespace brevane
