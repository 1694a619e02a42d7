// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

namespace brevane {

/// Keeps one observer subscribed for as long as it lives. May outlive what it observes.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    Subscription(Subscription&&) noexcept = default;
    Subscription& operator=(Subscription&&) noexcept;
    ~Subscription();

    /// Ends the subscription now. Once this returns on the announcing thread the observer is not
    /// called again, also in the middle of an announcement.
    void cancel();

private:
    friend class Announcement;
    explicit Subscription(std::shared_ptr<std::function<void()>> heldObserver);
    std::shared_ptr<std::function<void()>> observer;
};

/// Something that observers can be told of. One thread only. While it announces, observers may
/// subscribe (heard from the next announcement on), unsubscribe and announce again.
class Announcement {
public:
    Announcement();
    ~Announcement();
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;

    /// Calls `observer` at every announcement from now on, in the order of subscribing.
    Subscription subscribe(std::function<void()> observer);

    /// Calls every observer.
    void announce();

private:
    struct Observers;
    std::unique_ptr<Observers> observers;
};

} // namespace brevane
