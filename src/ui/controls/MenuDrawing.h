// SPDX-License-Identifier: MIT
#pragma once

class QObject;
class QPainter;
class QRegion;
class QSize;
class QStyleOption;
class QStyleOptionMenuItem;
class QWidget;

namespace brevane {

/// Marks a menu item or button as destructive, so that it is drawn as a warning.
void setDestructive(QObject& item);
[[nodiscard]] bool isDestructive(const QObject& item);

/// One title in the menu bar.
void drawMenuTitle(QPainter& painter, const QStyleOptionMenuItem& item);

/// Background and edge of an open menu.
void drawMenuGround(QPainter& painter, const QStyleOption& option);

/// The pixels that drawMenuGround() paints in a menu of this size.
[[nodiscard]] QRegion menuShape(const QSize& size);

/// One item of an open menu, or a separator.
void drawMenuItem(QPainter& painter, const QStyleOptionMenuItem& item, const QWidget* menu);

} // namespace brevane
