// SPDX-License-Identifier: MIT
#pragma once

#include "FilePreferences.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <system_error>

namespace brevane {

namespace fs = std::filesystem;
using Dictionary = Preferences::Dictionary;
using Record = Preferences::Record;

inline const std::string key = "TailscaleManagedServers";
inline const Dictionary sample{
    {"49231", Record{{"path", "/Users/x/site"}, {"type", "directory"}}},
    {"49232", Record{{"path", "/Users/x/ä \" \\ \n.pdf"}, {"type", "file"}}},
    {"49233", "text"}};

/// Replaces everything that is known of the dictionary under the key.
inline std::error_code store(Preferences& preferences, const Dictionary& dictionary,
                             const std::string& under = key) {
    Preferences::Changes changes;
    const auto before = preferences.dictionary(under);
    if (!before) return before.error();
    for (const auto& [name, entry] : *before)
        changes[name] = std::nullopt;
    for (const auto& [name, entry] : dictionary)
        changes[name] = entry;
    return preferences.update({{under, changes}});
}

/// A test with a preferences file in a folder of its own.
class PreferencesFile : public testing::Test {
protected:
    [[nodiscard]] std::string bytes(const fs::path& path) const {
        std::ifstream input(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(input), {}};
    }

    void write(const std::string& text) const { std::ofstream(file, std::ios::binary) << text; }

    [[nodiscard]] Dictionary dictionaryOf(const std::string& text) const {
        write(text);
        return FilePreferences(file).dictionary(key).value();
    }

    [[nodiscard]] std::set<std::string> names(const fs::path& path) const {
        std::set<std::string> found;
        for (const auto& entry : fs::directory_iterator(path))
            found.insert(entry.path().filename());
        return found;
    }

    static mode_t mode(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(lstat(path.c_str(), &status), 0);
        return status.st_mode & 07777;
    }

    test::TemporaryFolder folder;
    fs::path file = folder / "preferences.json";
    fs::path broken = folder / "preferences.json.broken";
};

} // namespace brevane
