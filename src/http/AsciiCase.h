// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <string_view>

namespace brevane {

/// Whether the text is `lowerCase`, its letters A to Z taken for a to z, whatever the locale.
[[nodiscard]] inline bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
    return std::ranges::equal(text, lowerCase, {}, [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
}

} // namespace brevane
