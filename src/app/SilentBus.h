// SPDX-License-Identifier: MIT
#pragma once

namespace brevane {

/// Makes Qt do without the session bus, or the accessibility bus, if that does not reply within a
/// second: Qt waits for a connection on the main thread without a time limit. Sets environment
/// variables, so it is called while there is one thread, before the QApplication is created. Linux
/// only.
void avoidSilentBuses();

} // namespace brevane
