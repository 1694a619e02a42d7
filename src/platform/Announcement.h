// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace brevane {

/// Keeps one observer subscribed for as long as it lives. May outlive what it observes.
class [[nodiscard]] Subscription {
public:
    /// Observes nothing.
    Subscription() = default;
    ~Subscription() = default;
    Subscription(Subscription&&) noexcept = default;
    Subscription& operator=(Subscription&&) noexcept = default;

    /// Ends the subscription now. Once this returns on the announcing thread the observer is not
    /// called again, also in the middle of an announcement.
    void cancel() { observer_.reset(); }

private:
    friend class Announcement;
    using Observer = std::function<void()>;
    explicit Subscription(std::shared_ptr<const Observer> observer)
        : observer_(std::move(observer)) {}
    std::shared_ptr<const Observer> observer_;
};

/// Something that observers can be told of. One thread only. While it announces, observers may
/// subscribe (heard from the next announcement on), unsubscribe and announce again.
class Announcement {
public:
    Announcement() = default;
    ~Announcement() = default;
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;

    /// Calls `observer` at every announcement from now on, in the order of subscribing.
    Subscription subscribe(std::function<void()> observer);

    /// Calls every observer.
    void announce();

private:
    /// Owned by their subscriptions.
    std::vector<std::weak_ptr<const Subscription::Observer>> observers_;
};

} // namespace brevane
