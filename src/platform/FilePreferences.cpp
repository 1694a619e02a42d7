// SPDX-License-Identifier: MIT
#include "FilePreferences.h"

#include "Text.h"
#include "UserAccount.h"
#include "WholeFile.h"

#include <boost/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <expected>
#include <utility>

namespace brevane {

namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

// Follows symbolic links, at most 40, to the final path, which need not exist.
std::expected<fs::path, std::error_code> followedLinks(fs::path file) {
    constexpr int limit = 40;
    for (int links = 0; links < limit; ++links) {
        std::error_code notALink;
        const fs::path target = fs::read_symlink(file, notALink);
        if (notALink) return file;
        file = file.parent_path() / target;
    }
    return std::unexpected(std::make_error_code(std::errc::too_many_symbolic_link_levels));
}

// Returns nullopt if the text is not one JSON object.
std::optional<json::object> parsedObject(const std::string& text) {
    boost::system::error_code error;
    json::value parsed = json::parse(text, error);
    if (error || !parsed.is_object()) return {};
    return std::move(parsed.get_object());
}

// Returns nullopt if the value is neither a string nor an object of strings.
std::optional<Preferences::Entry> toEntry(const json::value& value) {
    if (value.is_string()) return std::string(value.get_string());
    auto record = json::try_value_to<Preferences::Record>(value);
    if (!value.is_object() || !record) return {};
    return std::move(*record);
}

bool isAllUtf8(const std::string& text) {
    return isUtf8(text);
}

bool isAllUtf8(const Preferences::Record& record) {
    return std::ranges::all_of(
        record, [](const auto& text) { return isUtf8(text.first) && isUtf8(text.second); });
}

bool isAllUtf8(const Preferences::Changes& changes) {
    return std::ranges::all_of(changes, [](const auto& change) {
        const auto& [name, entry] = change;
        return isUtf8(name) &&
               (!entry ||
                std::visit([](const auto& content) { return isAllUtf8(content); }, *entry));
    });
}

void apply(const Preferences::Changes& changes, json::object& dictionary) {
    for (const auto& [name, entry] : changes) {
        if (entry)
            dictionary[name] =
                std::visit([](const auto& content) { return json::value_from(content); }, *entry);
        else
            dictionary.erase(name);
    }
}

// The first unused name among FILE.broken, FILE.broken.2 and so on.
std::expected<fs::path, std::error_code> freeNameBeside(const fs::path& file) {
    for (int number = 1;; ++number) {
        fs::path broken = file;
        broken += number == 1 ? ".broken" : ".broken." + std::to_string(number);
        std::error_code error;
        const auto type = fs::symlink_status(broken, error).type();
        if (type == fs::file_type::not_found) return broken;
        if (type == fs::file_type::none) return std::unexpected(error);
    }
}

// Keeps the broken file under another name. Only on a file system without hard links is there a
// moment without a file, in which a crash would leave none.
std::error_code replaceBrokenFile(const fs::path& file, const std::string& text) {
    const auto broken = freeNameBeside(file);
    if (!broken) return broken.error();
    std::error_code error;
    fs::create_hard_link(file, *broken, error);
    const bool isLinked = !error;
    if (!isLinked) fs::rename(file, *broken, error);
    if (error) return error;
    error = replaceWholeFile(file, text);
    std::error_code ignored;
    if (error && isLinked) fs::remove(*broken, ignored);
    if (error && !isLinked) fs::rename(*broken, file, ignored);
    return error;
}

} // namespace

fs::path FilePreferences::defaultFile() {
    const char* const named = std::getenv("XDG_CONFIG_HOME");
    fs::path folder = named != nullptr ? named : "";
    if (!folder.is_absolute()) folder = fs::path(homeDirectory()) / ".config";
    return folder / "brevane" / "preferences.json";
}

FilePreferences::FilePreferences(fs::path file) : file_(std::move(file)) {}

std::expected<Preferences::Dictionary, std::error_code>
FilePreferences::dictionary(const std::string& key) const {
    const auto text = readWholeFile(file_);
    if (!text) {
        if (text.error() == std::errc::no_such_file_or_directory) return Dictionary{};
        return std::unexpected(text.error());
    }
    const auto contents = parsedObject(*text);
    const json::value* const value = contents ? contents->if_contains(key) : nullptr;
    Dictionary dictionary;
    if (value == nullptr || !value->is_object()) return dictionary;
    for (const auto& member : value->get_object())
        if (auto entry = toEntry(member.value()))
            dictionary.insert_or_assign(std::string(member.key()), std::move(*entry));
    return dictionary;
}

std::error_code FilePreferences::update(const std::map<std::string, Changes>& dictionaries) {
    for (const auto& [key, changes] : dictionaries)
        if (!isUtf8(key) || !isAllUtf8(changes))
            return std::make_error_code(std::errc::illegal_byte_sequence);

    const auto target = followedLinks(file_);
    if (!target) return target.error();

    json::object contents;
    bool isBroken = false;
    if (const auto text = readWholeFile(*target)) {
        auto known = parsedObject(*text);
        isBroken = !known;
        if (known) contents = std::move(*known);
    } else if (text.error() != std::errc::no_such_file_or_directory) {
        return text.error();
    }

    for (const auto& [key, changes] : dictionaries) {
        json::value& value = contents[key];
        if (!value.is_object()) {
            isBroken = isBroken || !value.is_null();
            value.emplace_object();
        }
        apply(changes, value.get_object());
    }
    const std::string text = json::serialize(contents) + '\n';
    return isBroken ? replaceBrokenFile(*target, text) : replaceWholeFile(*target, text);
}

} // namespace brevane
