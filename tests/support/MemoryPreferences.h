// SPDX-License-Identifier: MIT
#pragma once

#include "Preferences.h"

#include <atomic>
#include <functional>
#include <mutex>

namespace brevane::test {

/// Preferences in memory, with a count of the writes. Any thread.
class MemoryPreferences final : public Preferences {
public:
    [[nodiscard]] std::expected<Dictionary, std::error_code>
    dictionary(const std::string& key) const override {
        const std::lock_guard lock(mutex_);
        const auto found = dictionaries_.find(key);
        return found == dictionaries_.end() ? Dictionary() : found->second;
    }

    std::error_code update(const std::map<std::string, Changes>& dictionaries) override {
        beforeUpdate();
        const std::lock_guard lock(mutex_);
        for (const auto& [key, changes] : dictionaries)
            for (const auto& [name, entry] : changes) {
                if (entry)
                    dictionaries_[key].insert_or_assign(name, *entry);
                else
                    dictionaries_[key].erase(name);
            }
        ++writes;
        return {};
    }

    std::atomic<int> writes = 0;
    std::function<void()> beforeUpdate = [] {}; ///< called by whoever writes

private:
    mutable std::mutex mutex_; // guards the dictionaries
    std::map<std::string, Dictionary> dictionaries_;
};

} // namespace brevane::test
