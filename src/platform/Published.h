// SPDX-License-Identifier: MIT
#pragma once

#include "Announcement.h"

#include <utility>

namespace brevane {

/// A property that tells its observers of each assignment before the new value takes effect,
/// equal values included. One thread only.
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
