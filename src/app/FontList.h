// SPDX-License-Identifier: MIT
#pragma once

#include <future>

namespace brevane {

/// Begins to read which fonts the system has, on a thread of its own: a tenth of the time to the
/// first frame, which would else pass when the first text is measured. Called before the
/// QApplication is made; destroying the result waits for the end. On macOS there is nothing to do.
[[nodiscard]] std::future<void> readFontList();

} // namespace brevane
