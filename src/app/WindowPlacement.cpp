// SPDX-License-Identifier: MIT
#include "WindowPlacement.h"

#include <QScreen>
#include <QWidget>

namespace brevane {

void centre(QWidget& window) {
    QRect frame = window.rect();
    frame.moveCenter(window.screen()->availableGeometry().center());
    window.move(frame.topLeft());
}

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace brevane
