// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <utility>

namespace brevane {

/// Owns one file descriptor, or none (-1), and closes it.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int owned) : number_(owned) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() { close(); }

    [[nodiscard]] int get() const { return number_; }
    [[nodiscard]] bool isOpen() const { return number_ != -1; }

    /// Passes ownership to the caller, who must close it.
    [[nodiscard]] int release() { return std::exchange(number_, -1); }

    void close() {
        if (isOpen()) ::close(std::exchange(number_, -1));
    }

private:
    int number_ = -1;
};

} // namespace brevane
