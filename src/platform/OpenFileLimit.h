// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace brevane {

/// Raises the soft limit on open descriptors to the hard one, for a program that has a descriptor
/// for each visitor. Processes forked later start with the limit of before, since some cannot do
/// with numbers beyond what select(2) takes; those that macOS spawns keep the raised one. Called
/// once, while there is one thread. Returns the limit that holds then, which is the old one where
/// raising it fails.
std::size_t raiseOpenFileLimit();

} // namespace brevane
