// SPDX-License-Identifier: MIT
#pragma once

namespace brevane {

/// Ends a program that cannot go on, since it gets no thread, descriptor or memory or has no
/// display, with one line on standard error and status 1 instead of an abort: what no one catches
/// and what Qt calls fatal comes here. What Qt warns of meanwhile is kept back, and its first
/// warning is the line. Called once, before anything that may fail so.
void installLastWords();

/// Writes what has been kept back, since the program has started after all. Main thread.
void releaseMessages();

} // namespace brevane
