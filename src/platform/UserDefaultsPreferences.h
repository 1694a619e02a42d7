// SPDX-License-Identifier: MIT
#pragma once

#include "Preferences.h"

namespace brevane {

/// Preferences in the user defaults of macOS, under the application's own identifier.
class UserDefaultsPreferences final : public Preferences {
public:
    [[nodiscard]] std::optional<Dictionary> dictionary(const std::string& key) const override;
    std::error_code set(const std::string& key, const Dictionary& value) override;
};

} // namespace brevane
