// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

namespace brevane {

class Loaders;
class ServerThreads;

/// What the connections of one server share. A connection that finds it gone while it still reads
/// its request ends; one that answers keeps it.
struct ServedFolder {
    std::string root; ///< a standardized path
    ServerThreads& threads;
    std::shared_ptr<Loaders> loaders;
};

} // namespace brevane
