// SPDX-License-Identifier: MIT
#include "UserDefaultsPreferences.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace brevane {
namespace {

using Dictionary = Preferences::Dictionary;

const Dictionary sample{{"49231", {{"path", "/Users/mira/site"}, {"type", "directory"}}},
                        {"49232", {{"path", "/Users/mira/report.pdf"}, {"type", "file"}}}};

// In the defaults of the test program, where what a test has stored does not stay.
class UserDefaultsPreferencesTest : public testing::Test {
protected:
    ~UserDefaultsPreferencesTest() override { store(nullptr); }

    void store(CFPropertyListRef value) {
        CFPreferencesSetAppValue(CFSTR("Test"), value, kCFPreferencesCurrentApplication);
        CFPreferencesAppSynchronize(kCFPreferencesCurrentApplication);
    }

    // What is read where a property list of this XML is stored.
    std::optional<Dictionary> dictionaryOf(std::string_view xml) {
        const std::string document = "<plist version=\"1.0\">" + std::string(xml) + "</plist>";
        const CFDataRef bytes =
            CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(document.data()),
                         static_cast<CFIndex>(document.size()));
        const CFPropertyListRef list = CFPropertyListCreateWithData(
            kCFAllocatorDefault, bytes, kCFPropertyListImmutable, nullptr, nullptr);
        CFRelease(bytes);
        if (list == nullptr) {
            ADD_FAILURE() << "not a property list: " << document;
            return {};
        }
        store(list);
        CFRelease(list);
        return preferences.dictionary(key);
    }

    // What is read where a record's path is this UTF-16.
    template <std::size_t Length>
    std::optional<Dictionary> dictionaryWithPath(const UniChar (&units)[Length]) {
        const CFStringRef path = CFStringCreateWithCharacters(kCFAllocatorDefault, units, Length);
        const CFMutableDictionaryRef record = makeDictionary(CFSTR("path"), path);
        const CFMutableDictionaryRef records = makeDictionary(CFSTR("49231"), record);
        store(records);
        for (const CFTypeRef object : {CFTypeRef(path), CFTypeRef(record), CFTypeRef(records)})
            CFRelease(object);
        return preferences.dictionary(key);
    }

    const std::string key = "Test";
    UserDefaultsPreferences preferences;

private:
    static CFMutableDictionaryRef makeDictionary(CFStringRef name, CFTypeRef value) {
        const CFMutableDictionaryRef dictionary =
            CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                      &kCFTypeDictionaryValueCallBacks);
        CFDictionarySetValue(dictionary, name, value);
        return dictionary;
    }
};

TEST_F(UserDefaultsPreferencesTest, GivesBackWhatWasStored) {
    EXPECT_FALSE(preferences.set(key, sample));
    EXPECT_EQ(preferences.dictionary(key), sample);
    EXPECT_EQ(UserDefaultsPreferences().dictionary(key), sample);
}

TEST_F(UserDefaultsPreferencesTest, HasNothingUnderAKeyThatIsAbsent) {
    EXPECT_EQ(preferences.dictionary(key), std::nullopt);
}

TEST_F(UserDefaultsPreferencesTest, StoresAnEmptyDictionary) {
    EXPECT_FALSE(preferences.set(key, sample));
    EXPECT_FALSE(preferences.set(key, {}));
    EXPECT_EQ(preferences.dictionary(key), Dictionary{});
}

TEST_F(UserDefaultsPreferencesTest, StoresAnEmptyRecord) {
    EXPECT_FALSE(preferences.set(key, {{"49231", {}}}));
    EXPECT_EQ(preferences.dictionary(key), (Dictionary{{"49231", {}}}));
}

TEST_F(UserDefaultsPreferencesTest, KeepsEveryCharacterAsItIs) {
    // Among them a letter with a separate accent, which a file system might compose.
    const Dictionary texts{{"80€",
                            {{"päth", "/Users/Jür­gen/日本語 📁/e\xcc\x81"},
                             {"control", "a\nb\tc\x01"},
                             {"empty", ""}}}};
    EXPECT_FALSE(preferences.set(key, texts));
    EXPECT_EQ(preferences.dictionary(key), texts);
}

TEST_F(UserDefaultsPreferencesTest, RefusesTextThatIsNotUtf8) {
    for (const char* const text : {"\xff\xfe", "\xed\xa0\x80", "\xc0\xaf", "\xf4\x90\x80\x80"}) {
        for (const Dictionary& value :
             {Dictionary{{"49231", {{"path", text}}}}, Dictionary{{"49231", {{text, "/x"}}}},
              Dictionary{{text, {{"path", "/x"}}}}})
            EXPECT_EQ(preferences.set(key, value), std::errc::illegal_byte_sequence);
        EXPECT_EQ(preferences.set(text, sample), std::errc::illegal_byte_sequence);
        EXPECT_EQ(preferences.dictionary(text), std::nullopt);
    }
}

TEST_F(UserDefaultsPreferencesTest, KeepsWhatIsThereWhenItRefuses) {
    EXPECT_FALSE(preferences.set(key, sample));
    EXPECT_TRUE(preferences.set(key, {{"49231", {{"path", "\xff"}}}}));
    EXPECT_EQ(preferences.dictionary(key), sample);
}

TEST_F(UserDefaultsPreferencesTest, ReadsWhatOthersHaveStored) {
    EXPECT_EQ(dictionaryOf(
                  "<dict><key>49231</key><dict><key>path</key><string>/x</string></dict></dict>"),
              (Dictionary{{"49231", {{"path", "/x"}}}}));
}

TEST_F(UserDefaultsPreferencesTest, IgnoresARecordOfAnotherShape) {
    for (const std::string value :
         {"<string>text</string>", "<integer>5</integer>", "<true/>",
          "<array><string>x</string></array>", "<data>AQID</data>",
          "<dict><key>1</key><string>flat</string></dict>",
          "<dict><key>1</key><dict><key>path</key><integer>5</integer></dict></dict>",
          "<dict><key>1</key><dict><key>path</key><false/></dict></dict>",
          "<dict><key>1</key><dict><key>path</key><data>AQID</data></dict></dict>",
          "<dict><key>1</key><dict><key>path</key><date>2026-01-01T00:00:00Z</date></dict></dict>"})
        EXPECT_EQ(dictionaryOf(value), std::nullopt) << value;
}

TEST_F(UserDefaultsPreferencesTest, IgnoresHalvesOfSurrogatePairs) {
    EXPECT_EQ(dictionaryWithPath({'a', 0xD83D, 0xDCC1}),
              (Dictionary{{"49231", {{"path", "a📁"}}}}));
    EXPECT_EQ(dictionaryWithPath({'a', 0xD800}), std::nullopt);
    EXPECT_EQ(dictionaryWithPath({'a', 0xDC00, 'b'}), std::nullopt);
}

TEST_F(UserDefaultsPreferencesTest, ReplacesAValueOfAnotherShape) {
    EXPECT_EQ(dictionaryOf("<string>text</string>"), std::nullopt);
    EXPECT_FALSE(preferences.set(key, sample));
    EXPECT_EQ(preferences.dictionary(key), sample);
}

TEST_F(UserDefaultsPreferencesTest, StoresThousandsOfRecords) {
    Dictionary many;
    for (int port = 0; port < 5000; ++port)
        many[std::to_string(port)] = {{"path", std::string(200, 'p')}, {"type", "file"}};
    EXPECT_FALSE(preferences.set(key, many));
    EXPECT_EQ(preferences.dictionary(key), many);
}

} // namespace
} // namespace brevane
