// SPDX-License-Identifier: MIT
#include "Button.h"

#include <QKeyEvent>

namespace brevane {

Button::Button(QWidget* parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
}

void Button::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && isEnabled())
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void Button::focusInEvent(QFocusEvent* event) {
    switch (event->reason()) {
    case Qt::MouseFocusReason:
        focusedByKeyboard = false;
        break;
    // The window or a menu gives back what the button had.
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
        break;
    default:
        focusedByKeyboard = true;
    }
    QAbstractButton::focusInEvent(event);
}

} // namespace brevane
