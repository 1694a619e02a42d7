// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>

class QWidget;

namespace brevane {

/// Installs Brevane's accessible interfaces: for widgets with a role of their own, and in place of
/// those of Qt's that block or crash. Called once, before any widget is created.
void installAccessibleInterfaces();

/// Overrides the role of a widget's class for screen readers. Called before the widget gets its
/// accessible name, since Qt then creates the interface, and with it the role.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

/// Makes the screen reader speak the accessible name of `widget` without moving the focus, after it
/// has been shown or has changed.
void announce(QWidget& widget);

} // namespace brevane
