// SPDX-License-Identifier: MIT
#pragma once

#include "Preferences.h"

namespace brevane {

/// Preferences in the user defaults of macOS, under the application's own identifier. Something
/// else where a dictionary belongs is kept under the key with ".broken" added before it is
/// replaced, or with ".broken.2" and so on.
class UserDefaultsPreferences final : public Preferences {
public:
    [[nodiscard]] std::expected<Dictionary, std::error_code>
    dictionary(const std::string& key) const override;
    [[nodiscard]] std::error_code
    update(const std::map<std::string, Changes>& dictionaries) override;
};

} // namespace brevane
