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
#include <vector>

namespace brevane::test {
namespace {

using FilePreferencesTest = PreferencesFile;

TEST_F(FilePreferencesTest, GivesBackWhatWasStored) {
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));
    EXPECT_EQ(preferences.dictionary(key), sample);
    EXPECT_EQ(FilePreferences(file).dictionary(key), sample);
}

TEST_F(FilePreferencesTest, StoresAnEmptyDictionary) {
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));
    EXPECT_FALSE(store(preferences, {}));
    EXPECT_EQ(preferences.dictionary(key), Dictionary{});
    EXPECT_EQ(bytes(file), "{\"TailscaleManagedServers\":{}}\n");
}

TEST_F(FilePreferencesTest, HasNothingWhereThereIsNoFile) {
    EXPECT_EQ(FilePreferences(file).dictionary(key), Dictionary());
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(FilePreferencesTest, HasNothingUnderAKeyThatIsAbsent) {
    EXPECT_EQ(dictionaryOf(R"({"Other":{}})"), Dictionary());
    EXPECT_EQ(dictionaryOf("{}"), Dictionary());
}

TEST_F(FilePreferencesTest, HasNothingInWhatIsNotADictionary) {
    for (const char* const value : {"null", "true", "1", "\"text\"", "[]", R"([["49231",{}]])"})
        EXPECT_EQ(dictionaryOf("{\"" + key + "\":" + value + "}"), Dictionary()) << value;
}

TEST_F(FilePreferencesTest, LeavesOutEntriesOfAnotherShapeAndKeepsThem) {
    for (const char* const entry : {"null", "7", R"(["path","/x"])", "[]", R"({"path":1})",
                                    R"({"path":null})", R"({"path":{}})"}) {
        const std::string before = std::string(R"({"1":{"path":"/a"},"2":)") + entry;
        EXPECT_EQ(dictionaryOf("{\"" + key + "\":" + before + "}}"),
                  (Dictionary{{"1", Record{{"path", "/a"}}}}))
            << entry;
        FilePreferences preferences(file);
        EXPECT_FALSE(preferences.update({{key, {{"1", std::nullopt}, {"3", "b"}}}}));
        EXPECT_NE(bytes(file).find(std::string("\"2\":") + entry), std::string::npos) << entry;
        EXPECT_EQ(preferences.dictionary(key), (Dictionary{{"3", "b"}})) << entry;
    }
}

TEST_F(FilePreferencesTest, TakesTheLastOfARepeatedKey) {
    EXPECT_EQ(dictionaryOf("{\"" + key + "\":{\"1\":{\"path\":\"/old\"}},\"" + key +
                           R"(":{"2":{"path":"/a","path":"/b"}}})"),
              (Dictionary{{"2", Record{{"path", "/b"}}}}));
}

TEST_F(FilePreferencesTest, HasNothingInWhatIsNotAnObject) {
    for (const char* const text :
         {"", "[]", "null", "{", "not JSON", "{}x", "\xFF", "{\"a\":\"\xFF\"}"})
        EXPECT_EQ(dictionaryOf(text), Dictionary()) << text;
}

TEST_F(FilePreferencesTest, KeepsOtherKeys) {
    write(R"({"window":{"width":800,"x":[1.5,null,true]},"TailscaleManagedServers":{},"z":"ü"})");
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, {}));
    EXPECT_FALSE(store(preferences, sample, "Other"));
    EXPECT_EQ(preferences.dictionary("Other"), sample);
    EXPECT_TRUE(bytes(file).starts_with(
        R"({"window":{"width":800,"x":[1.5E0,null,true]},"TailscaleManagedServers":{},"z":"ü",)"))
        << bytes(file);
}

TEST_F(FilePreferencesTest, KeepsEveryFileThatIsNotAnObjectBesideUnderItsOwnNumber) {
    FilePreferences preferences(file);
    const std::vector<std::string> texts{"not JSON", "[1,2]", ""};
    for (const std::string& text : texts) {
        write(text);
        EXPECT_FALSE(store(preferences, sample));
        EXPECT_EQ(preferences.dictionary(key), sample);
    }
    EXPECT_EQ(bytes(broken), texts[0]);
    EXPECT_EQ(bytes(broken.string() + ".2"), texts[1]);
    EXPECT_EQ(bytes(broken.string() + ".3"), texts[2]);
}

TEST_F(FilePreferencesTest, KeepsAFileWithSomethingElseInADictionarysPlaceBeside) {
    const std::string text = R"({"Other":1,"TailscaleManagedServers":[7]})";
    write(text);
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.update({{key, {}}}));
    EXPECT_EQ(bytes(broken), text);
    EXPECT_EQ(bytes(file), "{\"Other\":1,\"TailscaleManagedServers\":{}}\n");
}

TEST_F(FilePreferencesTest, ChangesTwoDictionariesAtOnceAndOnlyWhatIsNamed) {
    write(R"({"A":{"1":"a","2":"b"},"B":{"3":{"c":"d"}}})");
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.update(
        {{"A", {{"1", std::nullopt}, {"9", std::nullopt}, {"4", "e"}}}, {"C", {}}}));
    EXPECT_EQ(bytes(file),
              "{\"A\":{\"2\":\"b\",\"4\":\"e\"},\"B\":{\"3\":{\"c\":\"d\"}},\"C\":{}}\n");
}

TEST_F(FilePreferencesTest, LeavesNothingBesideOtherwise) {
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));
    EXPECT_FALSE(store(preferences, {}));
    EXPECT_EQ(names(folder.path), std::set<std::string>{"preferences.json"});
}

TEST_F(FilePreferencesTest, RefusesTextThatIsNotUtf8) {
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));
    for (const Dictionary& bad :
         {Dictionary{{"1", Record{{"path", "/\xFF"}}}}, Dictionary{{"1", Record{{"\xFF", "/"}}}},
          Dictionary{{"\xFF", Record()}}, Dictionary{{"1", "\xFF"}}})
        EXPECT_EQ(store(preferences, bad), std::errc::illegal_byte_sequence);
    EXPECT_EQ(preferences.update({{"\xFF", {}}}), std::errc::illegal_byte_sequence);
    EXPECT_EQ(preferences.dictionary(key), sample);
}

// Restores XDG_CONFIG_HOME at the end of the scope.
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
    const TemporaryFolder folder;
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    const std::unique_ptr<Preferences> preferences = makeUserPreferences();
    EXPECT_EQ(preferences->dictionary(key), Dictionary());
    EXPECT_FALSE(store(*preferences, sample));
    EXPECT_EQ(FilePreferences(folder / "brevane" / "preferences.json").dictionary(key), sample);
}

} // namespace
} // namespace brevane::test
