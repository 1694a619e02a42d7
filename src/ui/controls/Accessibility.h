// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>

class QWidget;

namespace brevane {

/// Has screen readers ask Brevane's own interfaces where Qt's would harm. Called once, before any
/// widget is made.
void installAccessibleInterfaces();

/// Gives a widget another role than its class has, for screen readers. Its name stays the widget's
/// accessible name. Called before the widget gets that name, with which its role becomes fixed.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

/// Has the screen reader speak the accessible name of `widget`, which has just been shown or has
/// changed, without moving the focus.
void announce(QWidget& widget);

} // namespace brevane
