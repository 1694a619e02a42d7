// SPDX-License-Identifier: MIT
#include "ServerPool.h"

#include "ServerThreads.h"

namespace brevane {

ServerPool::ServerPool() = default;

ServerPool::~ServerPool() {
    const MutexLock lock(mutex_);
    if (threads_) threads_->end();
}

ServerThreads& ServerPool::start() {
    const MutexLock lock(mutex_);
    if (!threads_) threads_ = ServerThreads::start();
    return *threads_;
}

} // namespace brevane
