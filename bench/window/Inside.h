// SPDX-License-Identifier: MIT
#pragma once

#include "ContentView.h"

namespace brevane::bench {

/// Runs the measures of an open window, then ends the application. `service` runs commands that
/// list fifty shares.
void measureInside(QWidget& window, TailscaleService& service);

} // namespace brevane::bench
