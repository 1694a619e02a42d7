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

namespace brevane {

namespace fs = std::filesystem;
using Dictionary = Preferences::Dictionary;

inline const std::string key = "TailscaleManagedServers";
inline const Dictionary sample{{"49231", {{"path", "/Users/x/site"}, {"type", "directory"}}},
                               {"49232", {{"path", "/Users/x/ä \" \\ \n.pdf"}, {"type", "file"}}}};

/// A test on one preferences file in a folder of its own.
class PreferencesFile : public testing::Test {
protected:
    [[nodiscard]] std::string bytes(const fs::path& path) const {
        std::ifstream input(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(input), {}};
    }

    void write(const std::string& text) const { std::ofstream(file, std::ios::binary) << text; }

    [[nodiscard]] std::optional<Dictionary> dictionaryOf(const std::string& text) const {
        write(text);
        return FilePreferences(file).dictionary(key);
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
