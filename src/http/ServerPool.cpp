// SPDX-License-Identifier: MIT
#include "ServerPool.h"

#include "ServerThreads.h"

namespace brevane {

ServerPool::ServerPool() = default;

ServerPool::~ServerPool() = default;

ServerThreads& ServerPool::start() {
    const std::scoped_lock lock(mutex);
    if (!threads) threads = std::make_unique<ServerThreads>();
    return *threads;
}

} // namespace brevane
