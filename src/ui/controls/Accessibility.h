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

/// Like QWidget's setters, which report a change to screen readers even if there is none.
void changeAccessibleName(QWidget& widget, const QString& name);
void changeAccessibleDescription(QWidget& widget, const QString& description);

/// Shows `widget`, whose role is a notification, and makes the screen reader speak its accessible
/// name once, without moving the focus.
void showAndAnnounce(QWidget& widget);

} // namespace brevane
