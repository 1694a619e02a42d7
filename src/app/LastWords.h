// SPDX-License-Identifier: MIT
#pragma once

namespace brevane {

/// Makes uncaught exceptions and fatal Qt messages, such as for lack of a thread, descriptor,
/// memory or display, end the program with one line on standard error and status 1 instead of an
/// abort. Until `releaseMessages`, Qt's warnings are held back, and the first is that line. Called
/// once, before anything that may fail this way.
void installLastWords();

/// Prints the messages held back, once the program has started. Main thread.
void releaseMessages();

} // namespace brevane
