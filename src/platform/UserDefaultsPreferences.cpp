// SPDX-License-Identifier: MIT
#include "UserDefaultsPreferences.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace brevane {

namespace {

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// Owns one reference to a Core Foundation object, or none.
template <class Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Release>;

// Null if the text is not UTF-8.
Owned<CFStringRef> makeString(std::string_view text) {
    return Owned<CFStringRef>(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

// Checked casts: null if the object has another type.
CFStringRef asString(CFTypeRef object) {
    return object != nullptr && CFGetTypeID(object) == CFStringGetTypeID()
               ? static_cast<CFStringRef>(object)
               : nullptr;
}

CFDictionaryRef asDictionary(CFTypeRef object) {
    return object != nullptr && CFGetTypeID(object) == CFDictionaryGetTypeID()
               ? static_cast<CFDictionaryRef>(object)
               : nullptr;
}

std::optional<std::string> text(CFTypeRef object) {
    const CFStringRef string = asString(object);
    if (string == nullptr) return {};
    const CFRange all = CFRangeMake(0, CFStringGetLength(string));
    CFIndex size = 0;
    // A lone surrogate cannot be encoded as UTF-8.
    if (CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false, nullptr, 0, &size) !=
        all.length)
        return {};
    std::string bytes(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false,
                     reinterpret_cast<UInt8*>(bytes.data()), size, nullptr);
    return bytes;
}

// The members of a dictionary that `convert` accepts. Others are skipped if `leavesOut` is set,
// otherwise the result is nullopt.
template <class Map, class Convert>
std::optional<Map> mapOf(CFDictionaryRef dictionary, bool leavesOut, Convert convert) {
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());

    Map map;
    for (std::size_t i = 0; i < count; ++i) {
        auto key = text(keys[i]);
        auto value = convert(values[i]);
        if (key && value)
            map.emplace(std::move(*key), std::move(*value));
        else if (!leavesOut)
            return {};
    }
    return map;
}

// Returns nullopt if the object is neither a string nor a dictionary of strings.
std::optional<Preferences::Entry> toEntry(CFTypeRef object) {
    if (auto content = text(object)) return std::move(*content);
    const CFDictionaryRef dictionary = asDictionary(object);
    if (dictionary == nullptr) return {};
    auto record = mapOf<Preferences::Record>(dictionary, false, text);
    if (!record) return {};
    return std::move(*record);
}

Owned<CFMutableDictionaryRef> makeDictionary() {
    return Owned<CFMutableDictionaryRef>(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

// Null if a text is not UTF-8.
Owned<CFTypeRef> makeEntry(const Preferences::Entry& entry) {
    if (const auto* const content = std::get_if<std::string>(&entry))
        return Owned<CFTypeRef>(makeString(*content).release());
    auto dictionary = makeDictionary();
    for (const auto& [name, content] : std::get<Preferences::Record>(entry)) {
        const auto key = makeString(name);
        const auto value = makeString(content);
        if (key == nullptr || value == nullptr) return nullptr;
        CFDictionarySetValue(dictionary.get(), key.get(), value.get());
    }
    return Owned<CFTypeRef>(dictionary.release());
}

Owned<CFPropertyListRef> valueOf(CFStringRef key) {
    return Owned<CFPropertyListRef>(
        CFPreferencesCopyAppValue(key, kCFPreferencesCurrentApplication));
}

void keepBroken(const std::string& key, CFPropertyListRef value) {
    for (int number = 1;; ++number) {
        const auto name =
            makeString(key + (number == 1 ? ".broken" : ".broken." + std::to_string(number)));
        if (valueOf(name.get()) != nullptr) continue;
        CFPreferencesSetAppValue(name.get(), value, kCFPreferencesCurrentApplication);
        return;
    }
}

// Null if a text is not UTF-8.
Owned<CFMutableDictionaryRef> changed(CFDictionaryRef before, const Preferences::Changes& changes) {
    auto dictionary = before == nullptr
                          ? makeDictionary()
                          : Owned<CFMutableDictionaryRef>(
                                CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, before));
    for (const auto& [name, entry] : changes) {
        const auto key = makeString(name);
        const auto value = entry ? makeEntry(*entry) : nullptr;
        if (key == nullptr || (entry && value == nullptr)) return nullptr;
        if (entry)
            CFDictionarySetValue(dictionary.get(), key.get(), value.get());
        else
            CFDictionaryRemoveValue(dictionary.get(), key.get());
    }
    return dictionary;
}

} // namespace

std::expected<Preferences::Dictionary, std::error_code>
UserDefaultsPreferences::dictionary(const std::string& key) const {
    const auto name = makeString(key);
    if (name == nullptr) return {};
    const auto value = valueOf(name.get());
    const CFDictionaryRef dictionary = asDictionary(value.get());
    if (dictionary == nullptr) return {};
    return mapOf<Dictionary>(dictionary, true, toEntry).value_or(Dictionary{});
}

std::error_code
UserDefaultsPreferences::update(const std::map<std::string, Changes>& dictionaries) {
    // Builds all of them before storing the first.
    struct Stored {
        std::string key;
        Owned<CFStringRef> name;
        Owned<CFPropertyListRef> before;
        Owned<CFMutableDictionaryRef> after;
    };
    std::vector<Stored> stored;
    for (const auto& [key, changes] : dictionaries) {
        auto name = makeString(key);
        if (name == nullptr) return std::make_error_code(std::errc::illegal_byte_sequence);
        auto before = valueOf(name.get());
        auto after = changed(asDictionary(before.get()), changes);
        if (after == nullptr) return std::make_error_code(std::errc::illegal_byte_sequence);
        stored.push_back({key, std::move(name), std::move(before), std::move(after)});
    }
    for (const Stored& each : stored) {
        if (each.before != nullptr && asDictionary(each.before.get()) == nullptr)
            keepBroken(each.key, each.before.get());
        CFPreferencesSetAppValue(each.name.get(), each.after.get(),
                                 kCFPreferencesCurrentApplication);
    }
    if (!CFPreferencesAppSynchronize(kCFPreferencesCurrentApplication))
        return std::make_error_code(std::errc::io_error);
    return {};
}

} // namespace brevane
