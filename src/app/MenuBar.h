// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

class QMenuBar;

namespace brevane {

/// Fills an empty menu bar with the application's menus. The Edit items do to the focused text
/// field what their keys do there; the Window items act on the active window.
void fillMenuBar(QMenuBar& bar, const std::function<void()>& showAbout,
                 const std::function<void()>& quit);

} // namespace brevane
