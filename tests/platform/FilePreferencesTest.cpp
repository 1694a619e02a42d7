// SPDX-License-Identifier: MIT
#include "FilePreferences.h"

#include "TemporaryFolder.h"
#include "UserAccount.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <system_error>
#include <thread>

namespace brevane {
namespace {

namespace fs = std::filesystem;
using Dictionary = Preferences::Dictionary;

const std::string key = "TailscaleManagedServers";
const Dictionary sample{{"49231", {{"path", "/Users/x/site"}, {"type", "directory"}}},
                        {"49232", {{"path", "/Users/x/ä \" \\ \n.pdf"}, {"type", "file"}}}};

class FilePreferencesTest : public testing::Test {
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

    TemporaryFolder folder;
    fs::path file = folder.path() / "preferences.json";
    fs::path broken = folder.path() / "preferences.json.broken";
};

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
    EXPECT_EQ(names(folder.path()), std::set<std::string>{"preferences.json"});
}

TEST_F(FilePreferencesTest, IsReadableByItsOwnerAloneWhateverWasThere) {
    umask(0);
    write("{}");
    fs::permissions(file, fs::perms::all);
    const fs::path leftBehind = folder.path() / "preferences.json.new";
    std::ofstream(leftBehind) << "left behind by a writer that was killed";
    fs::permissions(leftBehind, fs::perms::all);
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.set(key, sample));
    umask(022);
    EXPECT_EQ(mode(file), 0600U);
    EXPECT_EQ(preferences.dictionary(key), sample);
    EXPECT_FALSE(fs::exists(leftBehind));
}

TEST_F(FilePreferencesTest, MakesMissingFoldersForItsOwnerAlone) {
    umask(0);
    const fs::path deep = folder.path() / "config" / "brevane";
    FilePreferences preferences(deep / "preferences.json");
    EXPECT_FALSE(preferences.set(key, sample));
    umask(022);
    EXPECT_EQ(mode(deep), 0700U);
    EXPECT_EQ(mode(deep.parent_path()), 0700U);
    EXPECT_EQ(preferences.dictionary(key), sample);
}

TEST_F(FilePreferencesTest, LeavesTheModeOfAFolderThatIsThere) {
    fs::permissions(folder.path(), fs::perms::owner_all | fs::perms::group_read);
    EXPECT_FALSE(FilePreferences(file).set(key, sample));
    EXPECT_EQ(mode(folder.path()), 0740U);
}

TEST_F(FilePreferencesTest, WorksOnABareNameInTheCurrentFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    FilePreferences preferences("preferences.json");
    EXPECT_FALSE(preferences.set(key, sample));
    EXPECT_EQ(preferences.dictionary(key), sample);
    fs::current_path(before);
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(FilePreferencesTest, WritesThroughASymbolicLink) {
    const fs::path elsewhere = folder.path() / "dotfiles";
    fs::create_directory(elsewhere);
    std::ofstream(elsewhere / "real.json") << R"({"Other":1})";
    fs::create_symlink("dotfiles/hop", file);
    fs::create_symlink(elsewhere / "real.json", elsewhere / "hop");
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.set(key, {}));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_symlink(elsewhere / "hop"));
    EXPECT_EQ(bytes(elsewhere / "real.json"), "{\"Other\":1,\"TailscaleManagedServers\":{}}\n");
    EXPECT_EQ(names(elsewhere), (std::set<std::string>{"hop", "real.json"}));
}

TEST_F(FilePreferencesTest, MakesWhatADanglingLinkPointsTo) {
    fs::create_symlink("new/real.json", file);
    FilePreferences preferences(file);
    EXPECT_EQ(preferences.dictionary(key), std::nullopt);
    EXPECT_FALSE(preferences.set(key, sample));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(FilePreferences(folder.path() / "new" / "real.json").dictionary(key), sample);
}

TEST_F(FilePreferencesTest, GivesAnErrorForACircleOfLinks) {
    fs::create_symlink("preferences.json", file);
    FilePreferences preferences(file);
    EXPECT_EQ(preferences.set(key, sample), std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ(preferences.dictionary(key), std::nullopt);
}

TEST_F(FilePreferencesTest, LeavesAloneWhatItCannotRead) {
    fs::create_directory(file);
    FilePreferences preferences(file);
    EXPECT_EQ(preferences.set(key, sample), std::errc::is_a_directory);
    EXPECT_EQ(preferences.dictionary(key), std::nullopt);
    EXPECT_EQ(names(folder.path()), std::set<std::string>{"preferences.json"});
}

TEST_F(FilePreferencesTest, GivesAnErrorWhereTheFolderCannotBeMade) {
    write("text");
    EXPECT_EQ(FilePreferences(file / "brevane" / "preferences.json").set(key, sample),
              std::errc::not_a_directory);
    EXPECT_EQ(FilePreferences("/proc/brevane/preferences.json").set(key, sample),
              std::errc::no_such_file_or_directory);
}

TEST_F(FilePreferencesTest, GivesAnErrorWhereTheBrokenFileCannotBeKept) {
    write("not JSON");
    fs::create_directory(broken);
    FilePreferences preferences(file);
    EXPECT_EQ(preferences.set(key, sample), std::errc::is_a_directory);
    EXPECT_EQ(bytes(file), "not JSON");
}

TEST_F(FilePreferencesTest, GivesAnErrorWhereTheTemporaryFileCannotBeMade) {
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.set(key, sample));
    fs::create_directory(folder.path() / "preferences.json.new");
    EXPECT_EQ(preferences.set(key, {}), std::errc::is_a_directory);
    EXPECT_EQ(preferences.dictionary(key), sample);
}

TEST_F(FilePreferencesTest, KeepsTheOldRecordWhereTheDiskIsFull) {
    FilePreferences preferences(file);
    EXPECT_FALSE(preferences.set(key, sample));

    // A limit on the size of files stands for the full disk.
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handlerBefore = signal(SIGXFSZ, SIG_IGN);
    const rlimit tight{.rlim_cur = 100, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &tight);
    const auto error = preferences.set("Other", {{"1", {{"path", std::string(1000, 'x')}}}});
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handlerBefore);

    EXPECT_EQ(error, std::errc::file_too_large);
    EXPECT_EQ(preferences.dictionary(key), sample);
    EXPECT_EQ(names(folder.path()), std::set<std::string>{"preferences.json"});
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

// A record all of whose values tell the generation, long enough for a write to take its time.
Dictionary generation(int number) {
    Dictionary record;
    for (int port = 40000; port < 40300; ++port)
        record[std::to_string(port)] = {{"path", "/" + std::to_string(number)},
                                        {"type", std::string(200, 'x')}};
    return record;
}

// Writes one generation after another and tells of each that is stored.
[[noreturn]] void writeGenerations(FilePreferences& preferences, int first, int told) {
    for (int number = first;; ++number) {
        if (preferences.set(key, generation(number))) _exit(1);
        if (write(told, &number, sizeof number) == -1) _exit(1);
    }
}

TEST_F(FilePreferencesTest, HoldTheOldOrTheNewRecordAfter200Kills) {
    FilePreferences preferences(file);
    ASSERT_FALSE(preferences.set(key, generation(0)));
    std::minstd_rand random;
    std::uniform_int_distribution instants(0, 4000);
    int stored = 0;
    for (int kills = 0; kills < 200; ++kills) {
        std::array<int, 2> told{};
        ASSERT_EQ(pipe(told.data()), 0);
        const pid_t writer = fork();
        if (writer == 0) writeGenerations(preferences, stored + 1, told[1]);
        close(told[1]);
        // From its first record on the writer is killed at an instant that nobody chose.
        ASSERT_EQ(read(told[0], &stored, sizeof stored), static_cast<ssize_t>(sizeof stored));
        std::this_thread::sleep_for(std::chrono::microseconds(instants(random)));
        kill(writer, SIGKILL);
        int status = 0;
        waitpid(writer, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
        while (read(told[0], &stored, sizeof stored) == static_cast<ssize_t>(sizeof stored)) {
        }
        close(told[0]);

        const auto record = preferences.dictionary(key);
        ASSERT_TRUE(record);
        if (*record != generation(stored)) {
            ++stored;
            ASSERT_EQ(*record, generation(stored));
        }
    }
    for (const std::string& name : names(folder.path()))
        EXPECT_TRUE(name == "preferences.json" || name == "preferences.json.new") << name;
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
    const TemporaryFolder folder;
    setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
    const std::unique_ptr<Preferences> preferences = makeUserPreferences();
    EXPECT_EQ(preferences->dictionary(key), std::nullopt);
    EXPECT_FALSE(preferences->set(key, sample));
    EXPECT_EQ(FilePreferences(folder.path() / "brevane" / "preferences.json").dictionary(key),
              sample);
}

} // namespace
} // namespace brevane
