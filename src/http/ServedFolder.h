// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>
#include <string>

namespace brevane {

class Loaders;
class ServerThreads;

/// What the connections of one server share, and keep. One that still reads its request when the
/// server ends is closed as soon as more of it comes; one that answers finishes.
struct ServedFolder {
    std::string root; ///< a standardized path
    ServerThreads& threads;
    std::shared_ptr<Loaders> loaders;
    std::atomic<bool> isServed = true; ///< until the server ends
};

} // namespace brevane
