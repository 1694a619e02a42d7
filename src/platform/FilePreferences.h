// SPDX-License-Identifier: MIT
#pragma once

#include "Preferences.h"

#include <filesystem>

namespace brevane {

/// Preferences in one JSON file, readable by its owner alone. A file that holds something else, or
/// something else where a dictionary belongs, is kept beside as "preferences.json.broken" before it
/// is replaced, or as "preferences.json.broken.2" and so on. One process only.
class FilePreferences final : public Preferences {
public:
    /// The user's own file: brevane/preferences.json in $XDG_CONFIG_HOME, which where unset, empty
    /// or relative is .config in the home directory (XDG Base Directory Specification 0.8).
    [[nodiscard]] static std::filesystem::path defaultFile();

    /// Touches nothing yet. The file may be a symbolic link: what it points to is replaced then.
    explicit FilePreferences(std::filesystem::path file);

    /// Anything but a regular file cannot be read: std::errc::operation_not_supported, or
    /// std::errc::is_a_directory.
    [[nodiscard]] std::expected<Dictionary, std::error_code>
    dictionary(const std::string& key) const override;

    /// Written to a temporary file beside, flushed to disk and renamed over the old one. Makes the
    /// folder if it is missing.
    [[nodiscard]] std::error_code
    update(const std::map<std::string, Changes>& dictionaries) override;

private:
    std::filesystem::path file_;
};

} // namespace brevane
