// SPDX-License-Identifier: MIT
#pragma once

namespace brevane {

/// Ends a program that cannot go on, since it gets no thread, descriptor or memory or has no
/// display, with one line on standard error and status 1 instead of an abort: what no one catches
/// and what Qt calls fatal comes here. Called once, before anything that may fail so.
void installLastWords();

} // namespace brevane
