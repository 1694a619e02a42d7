// SPDX-License-Identifier: MIT
#include "Announcement.h"

namespace brevane {

Subscription Announcement::subscribe(std::function<void()> observer) {
    std::erase_if(observers_, [](const auto& known) { return known.expired(); });
    auto held = std::make_shared<const Subscription::Observer>(std::move(observer));
    observers_.push_back(held);
    return Subscription(std::move(held));
}

void Announcement::announce() {
    // Iterates over a copy, since observers may subscribe during the loop.
    const auto round = observers_;
    for (const auto& known : round) {
        // Keeps the observer alive if it cancels its own subscription.
        if (const auto observer = known.lock()) (*observer)();
    }
}

} // namespace brevane
