// SPDX-License-Identifier: MIT
#include "FilePreferences.h"

#include "PreferencesFile.h"
#include "UserAccount.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>

namespace brevane {
namespace {

using FilePreferencesTest = PreferencesFile;

TEST_F(FilePreferencesTest, GivesBackWhatWasStored) {
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.set(key, sample));
    EXPECT_EQ(preferences.dictionary(key), sample);
    EXPECT_EQ(FilePreferences(file).dictionary(key), sample);
}

TEST_F(FilePreferencesTest, StoresAnEmptyDictionary) {
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.set(key, sample));
    EXPECT_FALSE(preferences.set(key, {}));
    EXPECT_EQ(preferences.dictionary(key), Dictionary{});
    EXPECT_EQ(bytes(file), "{\"TailscaleManagedServers\":{}}\n");
}

TEST_F(FilePreferencesTest, HasNothingWhereThereIsNoFile) {
    EXPECT_EQ(FilePreferences(file).dictionary(key), std::nullopt);
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(FilePreferencesTest, HasNothingUnderAKeyThatIsAbsent) {
    EXPECT_EQ(dictionaryOf(R"({"Other":{}})"), std::nullopt);
    EXPECT_EQ(dictionaryOf("{}"), std::nullopt);
}

TEST_F(FilePreferencesTest, IgnoresARecordOfAnotherShape) {
    for (const char* const value :
         {"null", "true", "1", "\"text\"", "[]", R"([["49231",{}]])", R"({"49231":null})",
          R"({"49231":"text"})", R"({"49231":["path","/x"]})", R"({"49231":{"path":1}})",
          R"({"49231":{"path":null}})", R"({"49231":{"path":{}}})",
          R"({"49231":{"path":"/x"},"49232":{"path":false}})"}) {
        EXPECT_EQ(dictionaryOf("{\"" + key + "\":" + value + "}"), std::nullopt) << value;
    }
}

TEST_F(FilePreferencesTest, TakesTheLastOfARepeatedKey) {
    EXPECT_EQ(dictionaryOf("{\"" + key + "\":{\"1\":{\"path\":\"/old\"}},\"" + key +
                           R"(":{"2":{"path":"/a","path":"/b"}}})"),
              (Dictionary{{"2", {{"path", "/b"}}}}));
}

TEST_F(FilePreferencesTest, HasNothingInWhatIsNotAnObject) {
    for (const char* const text :
         {"", "[]", "null", "{", "not JSON", "{}x", "\xFF", "{\"a\":\"\xFF\"}"})
        EXPECT_EQ(dictionaryOf(text), std::nullopt) << text;
}

TEST_F(FilePreferencesTest, KeepsOtherKeys) {
    write(R"({"window":{"width":800,"x":[1.5,null,true]},"TailscaleManagedServers":7,"z":"ü"})");
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.set(key, {}));
    EXPECT_FALSE(preferences.set("Other", sample));
    EXPECT_EQ(preferences.dictionary("Other"), sample);
    EXPECT_TRUE(bytes(file).starts_with(
        R"({"window":{"width":800,"x":[1.5E0,null,true]},"TailscaleManagedServers":{},"z":"ü",)"))
        << bytes(file);
}

TEST_F(FilePreferencesTest, KeepsWhatIsNotAnObjectBeside) {
    FilePreferences preferences(file);
    for (const std::string text : {"not JSON", "[1,2]", ""}) {
        write(text);
        EXPECT_FALSE(preferences.set(key, sample));
        EXPECT_EQ(bytes(broken), text);
        EXPECT_EQ(preferences.dictionary(key), sample);
    }
}

TEST_F(FilePreferencesTest, LeavesNothingBesideOtherwise) {
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.set(key, sample));
    EXPECT_FALSE(preferences.set(key, {}));
    EXPECT_EQ(names(folder.path), std::set<std::string>{"preferences.json"});
}

TEST_F(FilePreferencesTest, RefusesTextThatIsNotUtf8) {
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.set(key, sample));
    for (const Dictionary& bad : {Dictionary{{"1", {{"path", "/\xFF"}}}},
                                  Dictionary{{"1", {{"\xFF", "/"}}}}, Dictionary{{"\xFF", {}}}})
        EXPECT_EQ(preferences.set(key, bad), std::errc::illegal_byte_sequence);
    EXPECT_EQ(preferences.set("\xFF", {}), std::errc::illegal_byte_sequence);
    EXPECT_EQ(preferences.dictionary(key), sample);
}

// The variable as it was, put back at the end.
class ConfigHome {
public:
    ConfigHome() {
        if (const char* const value = getenv("XDG_CONFIG_HOME")) before = value;
    }
    ~ConfigHome() {
        if (before)
            setenv("XDG_CONFIG_HOME", before->c_str(), 1);
        else
            unsetenv("XDG_CONFIG_HOME");
    }
    ConfigHome(const ConfigHome&) = delete;
    ConfigHome& operator=(const ConfigHome&) = delete;

private:
    std::optional<std::string> before;
};

TEST(DefaultFile, IsInTheConfigurationFolder) {
    const ConfigHome restored;
    setenv("XDG_CONFIG_HOME", "/some/where", 1);
    EXPECT_EQ(FilePreferences::defaultFile(), "/some/where/brevane/preferences.json");
}

TEST(DefaultFile, IsInTheHomeDirectoryWhereNoAbsoluteFolderIsNamed) {
    const ConfigHome restored;
    const std::string expected = homeDirectory() + "/.config/brevane/preferences.json";
    unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(FilePreferences::defaultFile(), expected);
    setenv("XDG_CONFIG_HOME", "", 1);
    EXPECT_EQ(FilePreferences::defaultFile(), expected);
    setenv("XDG_CONFIG_HOME", "relative/folder", 1);
    EXPECT_EQ(FilePreferences::defaultFile(), expected);
}

TEST(UserPreferences, AreInTheDefaultFile) {
    const ConfigHome restored;
    const test::TemporaryFolder folder;
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    const std::unique_ptr<Preferences> preferences = makeUserPreferences();
    EXPECT_EQ(preferences->dictionary(key), std::nullopt);
    EXPECT_FALSE(preferences->set(key, sample));
    EXPECT_EQ(FilePreferences(folder / "brevane" / "preferences.json").dictionary(key), sample);
}

} // namespace
} // namespace brevane
