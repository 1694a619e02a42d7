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

/// The per-user store of dictionaries whose entries are strings or dictionaries of strings. One
/// thread at a time; blocks on the disk.
class Preferences {
public:
    using Record = std::map<std::string, std::string>;
    using Entry = std::variant<std::string, Record>;
    using Dictionary = std::map<std::string, Entry>;
    /// New values for the named entries of one dictionary; nullopt removes the entry.
    using Changes = std::map<std::string, std::optional<Entry>>;

    virtual ~Preferences() = default;

    /// Returns the dictionary under `key`, without entries of any other type; empty if there is
    /// none. Returns the operating system's error if the store cannot be read.
    [[nodiscard]] virtual std::expected<Dictionary, std::error_code>
    dictionary(const std::string& key) const = 0;

    /// Changes entries of the dictionaries under these keys atomically, creating missing
    /// dictionaries. Entries that are not named stay as they are, even those of other types. After
    /// a crash the store holds either all of the changes or none; on macOS this holds for each
    /// dictionary. Returns the operating system's error if the store cannot be read or written, or
    /// std::errc::illegal_byte_sequence if a string is not UTF-8; then nothing has changed, except
    /// that macOS may write later what it could not write now.
    [[nodiscard]] virtual std::error_code
    update(const std::map<std::string, Changes>& dictionaries) = 0;
};

/// The store of the current user: the user defaults on macOS, a file elsewhere.
[[nodiscard]] std::unique_ptr<Preferences> makeUserPreferences();

} // namespace brevane
