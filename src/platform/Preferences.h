// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace brevane {

/// The per-user store of dictionaries of dictionaries of text. One thread only.
class Preferences {
public:
    using Dictionary = std::map<std::string, std::map<std::string, std::string>>;

    virtual ~Preferences() = default;

    /// The dictionary under `key`; nothing if there is none or any value in it is of another shape.
    [[nodiscard]] virtual std::optional<Dictionary> dictionary(const std::string& key) const = 0;

    /// Stores a dictionary under `key`, replacing what was there. Whatever happens in the middle,
    /// the store afterwards holds either the old dictionary or the new one. The error of the
    /// operating system where it could not be written; std::errc::illegal_byte_sequence where a
    /// text is not UTF-8.
    virtual std::error_code set(const std::string& key, const Dictionary& value) = 0;
};

/// The store of the user that runs the program: the user defaults on macOS, a file elsewhere.
[[nodiscard]] std::unique_ptr<Preferences> makeUserPreferences();

} // namespace brevane
