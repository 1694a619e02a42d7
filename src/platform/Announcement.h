// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace brevane {

/// Keeps one observer subscribed for its own lifetime. May outlive the Announcement.
class [[nodiscard]] Subscription {
public:
    /// Observes nothing.
    Subscription() = default;
    ~Subscription() = default;
    Subscription(Subscription&&) noexcept = default;
    Subscription& operator=(Subscription&&) noexcept = default;

    /// Unsubscribes. After this the observer is not called again, not even by an announcement in
    /// progress.
    void cancel() { observer_.reset(); }

private:
    friend class Announcement;
    using Observer = std::function<void()>;
    explicit Subscription(std::shared_ptr<const Observer> observer)
        : observer_(std::move(observer)) {}
    std::shared_ptr<const Observer> observer_;
};

/// A source of notifications. One thread only. During an announcement, observers may subscribe
/// (their first call is at the next announcement), unsubscribe and announce again.
class Announcement {
public:
    Announcement() = default;
    ~Announcement() = default;
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;

    /// Calls `observer` at every later announcement, as long as the returned Subscription lives.
    Subscription subscribe(std::function<void()> observer);

    /// Calls all observers, in order of subscription.
    void announce();

private:
    /// Owned by their subscriptions.
    std::vector<std::weak_ptr<const Subscription::Observer>> observers_;
};

} // namespace brevane
