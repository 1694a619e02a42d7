// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

class QWidget;

namespace brevane {

/// Calls `action` once from the event loop after the widget's first paint; at the latest after
/// `patience`, since a hidden window is not painted. Not called if the widget is destroyed first.
/// Main thread.
void afterFirstFrame(QWidget& widget, std::chrono::milliseconds patience,
                     std::function<void()> action);

} // namespace brevane
