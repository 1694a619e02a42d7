// SPDX-License-Identifier: MIT
#pragma once

#include "ContentView.h"

namespace brevane::bench {

/// Measures what happens in an open window and ends the application. `service` runs commands that
/// list fifty shares.
void measureInside(QWidget& window, TailscaleService& service);

} // namespace brevane::bench
