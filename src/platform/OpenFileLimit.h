// SPDX-License-Identifier: MIT
#pragma once

namespace brevane {

/// Raises the soft limit on open descriptors to the hard one, for a program that has a descriptor
/// for each visitor. Processes forked later start with the limit of before, since some cannot do
/// with numbers beyond what select(2) takes; those that macOS spawns keep the raised one. Called
/// once, while there is one thread. Where it fails the limit stays.
void raiseOpenFileLimit();

} // namespace brevane
