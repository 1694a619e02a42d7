// SPDX-License-Identifier: MIT
#include "ServerPool.h"

#include "ServerThreads.h"

namespace brevane {

ServerPool::ServerPool() : threads(std::make_unique<ServerThreads>()) {}

ServerPool::~ServerPool() = default;

} // namespace brevane
