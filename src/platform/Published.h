// SPDX-License-Identifier: MIT
#pragma once

#include "Announcement.h"

#include <utility>

namespace brevane {

/// A property that notifies its observers before each assignment takes effect, even of an equal
/// value. One thread only.
template <class Value>
class Published {
public:
    Published() = default;
    explicit Published(Value initial) : value_(std::move(initial)) {}

    [[nodiscard]] const Value& get() const { return value_; }
    [[nodiscard]] const Value& operator*() const { return value_; }
    [[nodiscard]] const Value* operator->() const { return &value_; }

    void set(Value newValue) {
        willChange.announce();
        value_ = std::move(newValue);
    }

    Announcement willChange;

private:
    Value value_{};
};

} // namespace brevane
