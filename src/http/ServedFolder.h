// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <memory>
#include <string>

namespace brevane {

class Loaders;
class ServerThreads;

/// What the connections of one server share and keep alive. After the server has ended, a
/// connection that is still reading its request is closed as soon as more data arrives; one that is
/// answering finishes.
struct ServedFolder {
    std::string root; ///< a standardized path
    ServerThreads& threads;
    std::shared_ptr<Loaders> loaders;
    std::atomic<bool> isServed = true; ///< false after the server has ended
};

} // namespace brevane
