// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>

// Attributes for clang's -Wthread-safety; empty for other compilers.
#ifdef __clang__
#define BREVANE_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define BREVANE_THREAD_SAFETY(attribute)
#endif
/// A member that may be accessed only while `mutex` is held.
#define GUARDED_BY(mutex) BREVANE_THREAD_SAFETY(guarded_by(mutex))
/// A function that may be called only while `mutex` is held.
#define REQUIRES(mutex) BREVANE_THREAD_SAFETY(requires_capability(mutex))

namespace brevane {

/// std::mutex as a capability of clang's analysis.
class BREVANE_THREAD_SAFETY(capability("mutex")) Mutex {
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() BREVANE_THREAD_SAFETY(acquire_capability()) { mutex_.lock(); }
    void unlock() BREVANE_THREAD_SAFETY(release_capability()) { mutex_.unlock(); }

private:
    friend class Condition;
    std::mutex mutex_;
};

/// Holds a mutex until the end of the scope.
class BREVANE_THREAD_SAFETY(scoped_lockable) MutexLock {
public:
    explicit MutexLock(Mutex& mutex) BREVANE_THREAD_SAFETY(acquire_capability(mutex))
        : mutex_(mutex) {
        mutex_.lock();
    }
    ~MutexLock() BREVANE_THREAD_SAFETY(release_capability()) { mutex_.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    Mutex& mutex_;
};

/// std::condition_variable for a Mutex that the caller holds.
class Condition {
public:
    void wait(Mutex& mutex) REQUIRES(mutex) {
        std::unique_lock lock(mutex.mutex_, std::adopt_lock);
        condition_.wait(lock);
        lock.release();
    }
    /// Returns false if `time` has passed without a notification. May also wake up spuriously.
    template <class Duration>
    bool waitFor(Mutex& mutex, Duration time) REQUIRES(mutex) {
        std::unique_lock lock(mutex.mutex_, std::adopt_lock);
        const bool notified = condition_.wait_for(lock, time) == std::cv_status::no_timeout;
        lock.release();
        return notified;
    }
    void notifyOne() { condition_.notify_one(); }
    void notifyAll() { condition_.notify_all(); }

private:
    std::condition_variable condition_;
};

} // namespace brevane
