// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

class QMenuBar;

namespace brevane {

/// Fills an empty menu bar with the application's menus. The Edit items act on the text of the
/// focused widget, and do nothing if it has none; the Window items act on the active window.
void fillMenuBar(QMenuBar& bar, const std::function<void()>& showAbout,
                 const std::function<void()>& quit);

} // namespace brevane
