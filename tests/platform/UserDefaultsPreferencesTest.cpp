// SPDX-License-Identifier: MIT
#include "UserDefaultsPreferences.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace brevane::test {
namespace {

using Dictionary = Preferences::Dictionary;
using Record = Preferences::Record;

const Dictionary sample{{"49231", Record{{"path", "/Users/mira/site"}, {"type", "directory"}}},
                        {"49232", Record{{"path", "/Users/mira/report.pdf"}, {"type", "file"}}},
                        {"49233", "text"}};

// Uses the test program's own defaults and removes what a test has stored.
class UserDefaultsPreferencesTest : public testing::Test {
protected:
    ~UserDefaultsPreferencesTest() override {
        store(nullptr);
        store(nullptr, CFSTR("Test.broken"));
        store(nullptr, CFSTR("Test.broken.2"));
    }

    void store(CFPropertyListRef value, CFStringRef name = CFSTR("Test")) {
        CFPreferencesSetAppValue(name, value, kCFPreferencesCurrentApplication);
        CFPreferencesAppSynchronize(kCFPreferencesCurrentApplication);
    }

    std::error_code add(const Dictionary& dictionary) {
        Preferences::Changes changes;
        for (const auto& [name, entry] : dictionary)
            changes[name] = entry;
        return preferences.update({{key, changes}});
    }

    static std::string textUnder(CFStringRef name) {
        const auto value = static_cast<CFStringRef>(
            CFPreferencesCopyAppValue(name, kCFPreferencesCurrentApplication));
        if (value == nullptr) return {};
        char bytes[100] = {};
        CFStringGetCString(value, bytes, sizeof bytes, kCFStringEncodingUTF8);
        CFRelease(value);
        return bytes;
    }

    // Reads the dictionary after storing a property list given as XML.
    Dictionary dictionaryOf(std::string_view xml) {
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
        return preferences.dictionary(key).value();
    }

    // Reads the dictionary after storing a record whose path is this UTF-16.
    template <std::size_t Length>
    Dictionary dictionaryWithPath(const UniChar (&units)[Length]) {
        const CFStringRef path = CFStringCreateWithCharacters(kCFAllocatorDefault, units, Length);
        const CFMutableDictionaryRef record = makeDictionary(CFSTR("path"), path);
        const CFMutableDictionaryRef records = makeDictionary(CFSTR("49231"), record);
        store(records);
        for (const CFTypeRef object : {CFTypeRef(path), CFTypeRef(record), CFTypeRef(records)})
            CFRelease(object);
        return preferences.dictionary(key).value();
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
    EXPECT_FALSE(add(sample));
    EXPECT_EQ(preferences.dictionary(key), sample);
    EXPECT_EQ(UserDefaultsPreferences().dictionary(key), sample);
}

TEST_F(UserDefaultsPreferencesTest, HasNothingUnderAKeyThatIsAbsent) {
    EXPECT_EQ(preferences.dictionary(key), Dictionary());
}

TEST_F(UserDefaultsPreferencesTest, ChangesOnlyWhatIsNamed) {
    EXPECT_FALSE(add(sample));
    EXPECT_FALSE(preferences.update({{key, {{"49231", std::nullopt}, {"1", "new"}}}}));
    EXPECT_EQ(preferences.dictionary(key),
              (Dictionary{{"1", "new"}, {"49232", sample.at("49232")}, {"49233", "text"}}));
}

TEST_F(UserDefaultsPreferencesTest, StoresAnEmptyRecord) {
    EXPECT_FALSE(add({{"49231", Record()}}));
    EXPECT_EQ(preferences.dictionary(key), (Dictionary{{"49231", Record()}}));
}

TEST_F(UserDefaultsPreferencesTest, KeepsEveryCharacterAsItIs) {
    // Including a letter with a combining accent, which a file system might compose.
    const Dictionary texts{{"80€", Record{{"päth", "/Users/Jür­gen/日本語 📁/e\xcc\x81"},
                                          {"control", "a\nb\tc\x01"},
                                          {"empty", ""}}}};
    EXPECT_FALSE(add(texts));
    EXPECT_EQ(preferences.dictionary(key), texts);
}

TEST_F(UserDefaultsPreferencesTest, RefusesTextThatIsNotUtf8AndKeepsWhatIsThere) {
    EXPECT_FALSE(add(sample));
    for (const char* const text : {"\xff\xfe", "\xed\xa0\x80", "\xc0\xaf", "\xf4\x90\x80\x80"}) {
        for (const Dictionary& value :
             {Dictionary{{"49231", Record{{"path", text}}}},
              Dictionary{{"49231", Record{{text, "/x"}}}},
              Dictionary{{text, Record{{"path", "/x"}}}}, Dictionary{{"1", text}}})
            EXPECT_EQ(add(value), std::errc::illegal_byte_sequence);
        EXPECT_EQ(preferences.update({{text, {}}}), std::errc::illegal_byte_sequence);
    }
    EXPECT_EQ(preferences.dictionary(key), sample);
}

TEST_F(UserDefaultsPreferencesTest, ReadsWhatOthersHaveStored) {
    EXPECT_EQ(dictionaryOf(
                  "<dict><key>49231</key><dict><key>path</key><string>/x</string></dict></dict>"),
              (Dictionary{{"49231", Record{{"path", "/x"}}}}));
}

TEST_F(UserDefaultsPreferencesTest, HasNothingInWhatIsNotADictionary) {
    for (const std::string value : {"<string>text</string>", "<integer>5</integer>", "<true/>",
                                    "<array><string>x</string></array>", "<data>AQID</data>"})
        EXPECT_EQ(dictionaryOf(value), Dictionary()) << value;
}

TEST_F(UserDefaultsPreferencesTest, LeavesOutEntriesOfAnotherShapeAndKeepsThem) {
    for (const std::string entry :
         {"<integer>5</integer>", "<true/>", "<dict><key>path</key><integer>5</integer></dict>",
          "<dict><key>path</key><false/></dict>", "<dict><key>path</key><data>AQID</data></dict>",
          "<dict><key>path</key><date>2026-01-01T00:00:00Z</date></dict>"}) {
        EXPECT_EQ(
            dictionaryOf("<dict><key>1</key>" + entry + "<key>2</key><string>text</string></dict>"),
            (Dictionary{{"2", "text"}}))
            << entry;
        EXPECT_FALSE(preferences.update({{key, {{"2", std::nullopt}}}}));
        const auto value = static_cast<CFDictionaryRef>(
            CFPreferencesCopyAppValue(CFSTR("Test"), kCFPreferencesCurrentApplication));
        ASSERT_NE(value, nullptr);
        EXPECT_EQ(CFDictionaryGetCount(value), 1) << entry;
        CFRelease(value);
    }
}

TEST_F(UserDefaultsPreferencesTest, IgnoresHalvesOfSurrogatePairs) {
    EXPECT_EQ(dictionaryWithPath({'a', 0xD83D, 0xDCC1}),
              (Dictionary{{"49231", Record{{"path", "a📁"}}}}));
    EXPECT_EQ(dictionaryWithPath({'a', 0xD800}), Dictionary());
    EXPECT_EQ(dictionaryWithPath({'a', 0xDC00, 'b'}), Dictionary());
}

TEST_F(UserDefaultsPreferencesTest, KeepsAValueOfAnotherShapeBesideUnderItsOwnNumber) {
    for (const char* const text : {"first", "second"}) {
        EXPECT_EQ(dictionaryOf("<string>" + std::string(text) + "</string>"), Dictionary());
        EXPECT_FALSE(add(sample));
        EXPECT_EQ(preferences.dictionary(key), sample);
    }
    EXPECT_EQ(textUnder(CFSTR("Test.broken")), "first");
    EXPECT_EQ(textUnder(CFSTR("Test.broken.2")), "second");
}

TEST_F(UserDefaultsPreferencesTest, StoresThousandsOfRecords) {
    Dictionary many;
    for (int port = 0; port < 5000; ++port)
        many[std::to_string(port)] = Record{{"path", std::string(200, 'p')}, {"type", "file"}};
    EXPECT_FALSE(add(many));
    EXPECT_EQ(preferences.dictionary(key), many);
}

} // namespace
} // namespace brevane::test
