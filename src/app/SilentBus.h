// SPDX-License-Identifier: MIT
#pragma once

namespace brevane {

/// Has Qt do without the session's message bus, or the one of screen readers, where that does not
/// answer within a second: Qt waits for a connection without a time limit, on the main thread. Sets
/// environment variables, so it is called while there is one thread, before the QApplication is
/// made. Linux only.
void avoidSilentBuses();

} // namespace brevane
