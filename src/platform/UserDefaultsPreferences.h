// SPDX-License-Identifier: MIT
#pragma once

#include "Preferences.h"

namespace brevane {

/// Preferences in the macOS user defaults, under the application's own identifier. A value that is
/// not a dictionary where one belongs is first copied to KEY.broken, or KEY.broken.2 and so on.
class UserDefaultsPreferences final : public Preferences {
public:
    [[nodiscard]] std::expected<Dictionary, std::error_code>
    dictionary(const std::string& key) const override;
    [[nodiscard]] std::error_code
    update(const std::map<std::string, Changes>& dictionaries) override;
};

} // namespace brevane
