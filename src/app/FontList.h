// SPDX-License-Identifier: MIT
#pragma once

#include <future>

namespace brevane {

/// Starts to read the system's font list on its own thread. It takes a tenth of the time to the
/// first frame, and would otherwise block the first text measurement. Called before the
/// QApplication is created; destroying the result joins the thread. Does nothing on macOS.
[[nodiscard]] std::future<void> readFontList();

} // namespace brevane
