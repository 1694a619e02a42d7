// SPDX-License-Identifier: MIT
#pragma once

namespace brevane {

/// Ends the program with one line on standard error and status 1 instead of an abort on uncaught
/// exceptions and fatal Qt messages, such as for lack of a thread, descriptor, memory or display.
/// Until `releaseMessages`, Qt's messages are held back, and the first of them is that line. Called
/// once, before anything that may fail this way.
void installLastWords();

/// Prints the messages held back, once the program has started. Main thread.
void releaseMessages();

} // namespace brevane
