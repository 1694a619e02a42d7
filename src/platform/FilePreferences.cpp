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

// What the file really is, however many symbolic links lead there, also if it does not exist yet.
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

// Nothing where the text is not one JSON object.
std::optional<json::object> parsedObject(const std::string& text) {
    boost::system::error_code error;
    json::value parsed = json::parse(text, error);
    if (error || !parsed.is_object()) return {};
    return std::move(parsed.get_object());
}

bool isAllUtf8(const std::string& key, const Preferences::Dictionary& dictionary) {
    return isUtf8(key) && std::ranges::all_of(dictionary, [](const auto& record) {
               return isUtf8(record.first) &&
                      std::ranges::all_of(record.second, [](const auto& entry) {
                          return isUtf8(entry.first) && isUtf8(entry.second);
                      });
           });
}

} // namespace

fs::path FilePreferences::defaultFile() {
    const char* const named = std::getenv("XDG_CONFIG_HOME");
    fs::path folder = named != nullptr ? named : "";
    if (!folder.is_absolute()) folder = fs::path(homeDirectory()) / ".config";
    return folder / "brevane" / "preferences.json";
}

FilePreferences::FilePreferences(fs::path stored) : file(std::move(stored)) {}

std::optional<Preferences::Dictionary> FilePreferences::dictionary(const std::string& key) const {
    const auto text = readWholeFile(file);
    if (!text) return {};
    const auto contents = parsedObject(*text);
    const json::value* const value = contents ? contents->if_contains(key) : nullptr;
    if (value == nullptr) return {};
    auto dictionary = json::try_value_to<Dictionary>(*value);
    if (!dictionary) return {};
    return std::move(*dictionary);
}

std::error_code FilePreferences::set(const std::string& key, const Dictionary& value) {
    if (!isAllUtf8(key, value)) return std::make_error_code(std::errc::illegal_byte_sequence);

    const auto target = followedLinks(file);
    if (!target) return target.error();

    json::object contents;
    if (const auto text = readWholeFile(*target)) {
        if (auto known = parsedObject(*text)) {
            contents = std::move(*known);
        } else {
            fs::path broken = *target;
            broken += ".broken";
            std::error_code error;
            fs::rename(*target, broken, error);
            if (error) return error;
        }
    } else if (text.error() != std::errc::no_such_file_or_directory) {
        return text.error();
    }

    contents[key] = json::value_from(value);
    return replaceWholeFile(*target, json::serialize(contents) + '\n');
}

} // namespace brevane
