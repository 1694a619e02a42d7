// SPDX-License-Identifier: MIT
#pragma once

#include "Preferences.h"

#include <filesystem>

namespace brevane {

/// Preferences in one JSON file, readable by its owner alone. A file that holds something else is
/// kept beside as "preferences.json.broken" before it is replaced. One process only.
class FilePreferences final : public Preferences {
public:
    /// The user's own file: brevane/preferences.json in $XDG_CONFIG_HOME, which where unset, empty
    /// or relative is .config in the home directory (XDG Base Directory Specification 0.8).
    [[nodiscard]] static std::filesystem::path defaultFile();

    /// Touches nothing yet. The file may be a symbolic link: what it points to is replaced then.
    explicit FilePreferences(std::filesystem::path file);

    [[nodiscard]] std::optional<Dictionary> dictionary(const std::string& key) const override;

    /// Written to a temporary file beside, flushed to disk and renamed over the old one. Makes the
    /// folder if it is missing. Other keys of the file are kept; a file that cannot be read is left
    /// as it is.
    std::error_code set(const std::string& key, const Dictionary& value) override;

private:
    std::filesystem::path file;
};

} // namespace brevane
