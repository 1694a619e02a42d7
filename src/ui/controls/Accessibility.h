// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>

class QWidget;

namespace brevane {

/// Gives a widget another role than its class has, for screen readers. Its name stays the widget's
/// accessible name. Called while the widget is being made, before anything asks for its role.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

/// Has the screen reader speak the accessible name of `widget`, which has just been shown or has
/// changed, without moving the focus.
void announce(QWidget& widget);

} // namespace brevane
