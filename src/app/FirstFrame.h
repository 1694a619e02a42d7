// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

class QWidget;

namespace brevane {

/// Calls `action` once, when the widget has been painted for the first time and the event loop is
/// free again; at the latest after `patience`, since a window that nobody can see is not painted.
/// Not if the widget goes before. Main thread.
void afterFirstFrame(QWidget& widget, std::chrono::milliseconds patience,
                     std::function<void()> action);

} // namespace brevane
