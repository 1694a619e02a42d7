// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <string_view>

namespace brevane {

/// ASCII case-insensitive comparison, independent of the locale; `lowerCase` must be lower case.
[[nodiscard]] inline bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
    return std::ranges::equal(text, lowerCase, {}, [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
}

} // namespace brevane
