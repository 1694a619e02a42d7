// SPDX-License-Identifier: MIT
#pragma once

#include <expected>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <variant>

namespace brevane {

/// The per-user store of dictionaries whose entries are texts or dictionaries of text. One thread
/// at a time; may block for as long as a disk does.
class Preferences {
public:
    using Record = std::map<std::string, std::string>;
    using Entry = std::variant<std::string, Record>;
    using Dictionary = std::map<std::string, Entry>;
    /// What is to become of the named entries of one dictionary: another content, or none.
    using Changes = std::map<std::string, std::optional<Entry>>;

    virtual ~Preferences() = default;

    /// The dictionary under `key` without the entries that are of another shape; an empty one where
    /// there is none. The error of the operating system where the store could not be read.
    [[nodiscard]] virtual std::expected<Dictionary, std::error_code>
    dictionary(const std::string& key) const = 0;

    /// Changes entries of the dictionaries under these keys, all at once, and makes the
    /// dictionaries that are missing. What is not named stays as it is, whatever its shape.
    /// Whatever happens in the middle, the store afterwards holds either all of the changes or
    /// none. Returns the error of the operating system where it could not be read or written, and
    /// std::errc::illegal_byte_sequence where a text is not UTF-8; nothing has changed then.
    [[nodiscard]] virtual std::error_code
    update(const std::map<std::string, Changes>& dictionaries) = 0;
};

/// The store of the user that runs the program: the user defaults on macOS, a file elsewhere.
[[nodiscard]] std::unique_ptr<Preferences> makeUserPreferences();

} // namespace brevane
