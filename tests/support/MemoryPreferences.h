// SPDX-License-Identifier: MIT
#pragma once

#include "Preferences.h"

namespace brevane::test {

/// Preferences that last as long as the object, with a count of what was written.
class MemoryPreferences final : public Preferences {
public:
    [[nodiscard]] std::optional<Dictionary> dictionary(const std::string& key) const override {
        const auto found = dictionaries.find(key);
        return found == dictionaries.end() ? std::nullopt : std::optional(found->second);
    }

    std::error_code set(const std::string& key, const Dictionary& value) override {
        dictionaries[key] = value;
        ++writes;
        return {};
    }

    std::map<std::string, Dictionary> dictionaries;
    int writes = 0;
};

} // namespace brevane::test
