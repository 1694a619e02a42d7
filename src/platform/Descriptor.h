// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <utility>

namespace brevane {

/// Owns one file descriptor, or none (-1), and closes it.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int owned) : number(owned) {}
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    ~Descriptor() { close(); }

    [[nodiscard]] int get() const { return number; }
    [[nodiscard]] bool isOpen() const { return number != -1; }

    /// Hands it over to the caller, who closes it.
    [[nodiscard]] int release() { return std::exchange(number, -1); }

    void close() {
        if (isOpen()) ::close(std::exchange(number, -1));
    }

private:
    int number = -1;
};

} // namespace brevane
