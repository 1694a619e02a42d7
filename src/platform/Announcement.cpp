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
    // Observers may subscribe meanwhile, so the round goes over a copy.
    const auto round = observers_;
    for (const auto& known : round) {
        // Held during the call: the observer may end its own subscription.
        if (const auto observer = known.lock()) (*observer)();
    }
}

} // namespace brevane
