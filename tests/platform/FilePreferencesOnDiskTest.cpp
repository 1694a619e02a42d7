// SPDX-License-Identifier: MIT
#include "FilePreferences.h"

#include "Descriptor.h"
#include "PreferencesFile.h"

#include <gtest/gtest.h>
#ifdef __linux__
#include <sys/inotify.h>
#endif
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <system_error>
#include <thread>

namespace brevane::test {
namespace {

using FilePreferencesOnDisk = PreferencesFile;

TEST_F(FilePreferencesOnDisk, IsReadableByItsOwnerAloneWhateverWasThere) {
    umask(0);
    write("{}");
    fs::permissions(file, fs::perms::all);
    const fs::path leftBehind = folder / "preferences.json.new";
    std::ofstream(leftBehind) << "left behind by a writer that was killed";
    fs::permissions(leftBehind, fs::perms::all);
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));
    umask(022);
    EXPECT_EQ(mode(file), 0600U);
    EXPECT_EQ(preferences.dictionary(key), sample);
    EXPECT_FALSE(fs::exists(leftBehind));
}

TEST_F(FilePreferencesOnDisk, MakesMissingFoldersForItsOwnerAlone) {
    umask(0);
    const fs::path deep = folder / "config" / "brevane";
    FilePreferences preferences(deep / "preferences.json");
    EXPECT_FALSE(store(preferences, sample));
    umask(022);
    EXPECT_EQ(mode(deep), 0700U);
    EXPECT_EQ(mode(deep.parent_path()), 0700U);
    EXPECT_EQ(preferences.dictionary(key), sample);
}

TEST_F(FilePreferencesOnDisk, LeavesTheModeOfAFolderThatIsThere) {
    fs::permissions(folder.path, fs::perms::owner_all | fs::perms::group_read);
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));
    EXPECT_EQ(mode(folder.path), 0740U);
}

TEST_F(FilePreferencesOnDisk, WorksOnABareNameInTheCurrentFolder) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.path);
    FilePreferences preferences("preferences.json");
    EXPECT_FALSE(store(preferences, sample));
    EXPECT_EQ(preferences.dictionary(key), sample);
    fs::current_path(before);
    EXPECT_TRUE(fs::exists(file));
}

TEST_F(FilePreferencesOnDisk, WritesThroughASymbolicLink) {
    const fs::path elsewhere = folder / "dotfiles";
    fs::create_directory(elsewhere);
    std::ofstream(elsewhere / "real.json") << R"({"Other":1})";
    fs::create_symlink("dotfiles/hop", file);
    fs::create_symlink(elsewhere / "real.json", elsewhere / "hop");
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, {}));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_symlink(elsewhere / "hop"));
    EXPECT_EQ(bytes(elsewhere / "real.json"), "{\"Other\":1,\"TailscaleManagedServers\":{}}\n");
    EXPECT_EQ(names(elsewhere), (std::set<std::string>{"hop", "real.json"}));
}

TEST_F(FilePreferencesOnDisk, MakesWhatADanglingLinkPointsTo) {
    fs::create_symlink("new/real.json", file);
    FilePreferences preferences(file);
    EXPECT_EQ(preferences.dictionary(key), Dictionary());
    EXPECT_FALSE(store(preferences, sample));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(FilePreferences(folder / "new" / "real.json").dictionary(key), sample);
}

TEST_F(FilePreferencesOnDisk, GivesAnErrorForACircleOfLinks) {
    fs::create_symlink("preferences.json", file);
    FilePreferences preferences(file);
    EXPECT_EQ(preferences.update({{key, {}}}), std::errc::too_many_symbolic_link_levels);
    EXPECT_EQ(preferences.dictionary(key).error(), std::errc::too_many_symbolic_link_levels);
}

TEST_F(FilePreferencesOnDisk, LeavesAloneWhatItCannotRead) {
    fs::create_directory(file);
    FilePreferences preferences(file);
    EXPECT_EQ(preferences.update({{key, {}}}), std::errc::is_a_directory);
    EXPECT_EQ(preferences.dictionary(key).error(), std::errc::is_a_directory);
    EXPECT_EQ(names(folder.path), std::set<std::string>{"preferences.json"});
}

TEST_F(FilePreferencesOnDisk, WaitsForNoWriterOfAPipe) {
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    FilePreferences preferences(file);
    EXPECT_EQ(preferences.dictionary(key).error(), std::errc::operation_not_supported);
    EXPECT_EQ(preferences.update({{key, {}}}), std::errc::operation_not_supported);
    EXPECT_TRUE(fs::is_fifo(file));
}

TEST_F(FilePreferencesOnDisk, WaitsForNoReaderOfAPipeInTheTemporaryFilesPlace) {
    ASSERT_EQ(mkfifo((folder / "preferences.json.new").c_str(), 0600), 0);
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));
    EXPECT_EQ(preferences.dictionary(key), sample);
    EXPECT_EQ(names(folder.path), std::set<std::string>{"preferences.json"});
}

TEST_F(FilePreferencesOnDisk, GivesAnErrorWhereTheFolderCannotBeMade) {
    write("text");
    EXPECT_EQ(FilePreferences(file / "brevane" / "preferences.json").update({{key, {}}}),
              std::errc::not_a_directory);
    fs::create_symlink("nowhere", folder / "dangling");
    EXPECT_EQ(FilePreferences(folder / "dangling" / "preferences.json").update({{key, {}}}),
              std::errc::file_exists);
}

TEST_F(FilePreferencesOnDisk, KeepsABrokenFileBesideWhateverHasItsNameAlready) {
    write("not JSON");
    fs::create_directory(broken);
    fs::create_symlink("nowhere", broken.string() + ".2");
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));
    EXPECT_EQ(bytes(broken.string() + ".3"), "not JSON");
}

#ifdef __linux__
TEST_F(FilePreferencesOnDisk, IsThereAtEveryMomentWhileABrokenOneIsReplaced) {
    write("not JSON");
    const Descriptor watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    ASSERT_NE(inotify_add_watch(watch.get(), folder.path.c_str(), IN_MOVED_FROM | IN_DELETE), -1);
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));

    alignas(inotify_event) std::array<char, 4096> events{};
    const ssize_t size = read(watch.get(), events.data(), events.size());
    std::set<std::string> gone;
    for (ssize_t offset = 0; offset < size;) {
        const auto* event = reinterpret_cast<const inotify_event*>(events.data() + offset);
        gone.insert(event->name);
        offset += static_cast<ssize_t>(sizeof *event + event->len);
    }
    EXPECT_EQ(gone, std::set<std::string>{"preferences.json.new"});
    EXPECT_EQ(bytes(broken), "not JSON");
}
#endif

TEST_F(FilePreferencesOnDisk, LeavesABrokenFileWhereItIsIfItCannotBeReplaced) {
    write("not JSON");
    fs::create_directory(folder / "preferences.json.new");
    FilePreferences preferences(file);
    EXPECT_EQ(preferences.update({{key, {}}}), std::errc::is_a_directory);
    EXPECT_EQ(bytes(file), "not JSON");
    EXPECT_FALSE(fs::exists(broken));
}

TEST_F(FilePreferencesOnDisk, GivesAnErrorWhereTheTemporaryFileCannotBeMade) {
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));
    fs::create_directory(folder / "preferences.json.new");
    EXPECT_EQ(store(preferences, {}), std::errc::is_a_directory);
    EXPECT_EQ(preferences.dictionary(key), sample);
}

TEST_F(FilePreferencesOnDisk, KeepsTheOldRecordWhereTheDiskIsFull) {
    FilePreferences preferences(file);
    EXPECT_FALSE(store(preferences, sample));

    // RLIMIT_FSIZE simulates a full disk.
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handlerBefore = signal(SIGXFSZ, SIG_IGN);
    const rlimit tight{.rlim_cur = 100, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &tight);
    const auto error = preferences.update({{"Other", {{"1", std::string(1000, 'x')}}}});
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, handlerBefore);

    EXPECT_EQ(error, std::errc::file_too_large);
    EXPECT_EQ(preferences.dictionary(key), sample);
    EXPECT_EQ(names(folder.path), std::set<std::string>{"preferences.json"});
}

// A record whose values all contain the generation, large enough for a write to take a while.
Dictionary generation(int number) {
    Dictionary record;
    for (int port = 40000; port < 40300; ++port)
        record[std::to_string(port)] =
            Record{{"path", "/" + std::to_string(number)}, {"type", std::string(200, 'x')}};
    return record;
}

// Writes one generation after another and reports each one stored.
[[noreturn]] void writeGenerations(FilePreferences& preferences, int first, int told) {
    for (int number = first;; ++number) {
        if (store(preferences, generation(number))) _exit(1);
        if (write(told, &number, sizeof number) == -1) _exit(1);
    }
}

TEST_F(FilePreferencesOnDisk, HoldTheOldOrTheNewRecordAfter200Kills) {
    FilePreferences preferences(file);
    ASSERT_FALSE(store(preferences, generation(0)));
    std::minstd_rand random;
    std::uniform_int_distribution instants(0, 4000);
    int stored = 0;
    for (int kills = 0; kills < 200; ++kills) {
        std::array<int, 2> told{};
        ASSERT_EQ(pipe(told.data()), 0);
        const pid_t writer = fork();
        if (writer == 0) writeGenerations(preferences, stored + 1, told[1]);
        close(told[1]);
        // The writer is killed at a random instant after its first report.
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
    for (const std::string& name : names(folder.path))
        EXPECT_TRUE(name == "preferences.json" || name == "preferences.json.new") << name;
}

} // namespace
} // namespace brevane::test
