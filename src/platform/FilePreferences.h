// SPDX-License-Identifier: MIT
#pragma once

#include "Preferences.h"

#include <filesystem>

namespace brevane {

/// Preferences in one JSON file with mode 0600. If the file is not a JSON object, or holds
/// something else where a dictionary belongs, `update` first renames it to
/// "preferences.json.broken", or "preferences.json.broken.2" and so on. One process only.
class FilePreferences final : public Preferences {
public:
    /// brevane/preferences.json in $XDG_CONFIG_HOME, or in .config of the home directory if that is
    /// unset, empty or relative (XDG Base Directory Specification 0.8).
    [[nodiscard]] static std::filesystem::path defaultFile();

    /// Does not access the file yet. If it is a symbolic link, `update` replaces the link's target.
    explicit FilePreferences(std::filesystem::path file);

    /// Returns std::errc::is_a_directory for a folder, std::errc::operation_not_supported for
    /// anything else that is not a regular file.
    [[nodiscard]] std::expected<Dictionary, std::error_code>
    dictionary(const std::string& key) const override;

    /// Writes a temporary file next to the old one, flushes it to disk and renames it over the old
    /// one. Creates missing folders.
    [[nodiscard]] std::error_code
    update(const std::map<std::string, Changes>& dictionaries) override;

private:
    std::filesystem::path file_;
};

} // namespace brevane
