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
    focusedByKeyboard = event->reason() != Qt::MouseFocusReason;
    QAbstractButton::focusInEvent(event);
}

} // namespace brevane
