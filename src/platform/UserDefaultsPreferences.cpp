// SPDX-License-Identifier: MIT
#include "UserDefaultsPreferences.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

namespace brevane {

namespace {

struct Release {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// Owns one reference to a Core Foundation object, or none.
template <class Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Release>;

// None where the text is not UTF-8.
Owned<CFStringRef> makeString(std::string_view text) {
    return Owned<CFStringRef>(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

// The object as what it is asked to be, or null where it is of another type.
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
    // A half of a surrogate pair has no UTF-8.
    if (CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false, nullptr, 0, &size) !=
        all.length)
        return {};
    std::string bytes(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, all, kCFStringEncodingUTF8, 0, false,
                     reinterpret_cast<UInt8*>(bytes.data()), size, nullptr);
    return bytes;
}

// The map of a dictionary whose values `convert` understands, all of them.
template <class Map, class Convert>
std::optional<Map> mapOf(CFTypeRef object, Convert convert) {
    const CFDictionaryRef dictionary = asDictionary(object);
    if (dictionary == nullptr) return {};
    const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
    std::vector<const void*> keys(count);
    std::vector<const void*> values(count);
    CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());

    Map map;
    for (std::size_t i = 0; i < count; ++i) {
        auto key = text(keys[i]);
        auto value = convert(values[i]);
        if (!key || !value) return {};
        map.emplace(std::move(*key), std::move(*value));
    }
    return map;
}

// The dictionary of a map whose values `convert` can store, all of them.
template <class Map, class Convert>
Owned<CFMutableDictionaryRef> makeDictionary(const Map& map, Convert convert) {
    Owned<CFMutableDictionaryRef> dictionary(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    for (const auto& [name, content] : map) {
        const auto key = makeString(name);
        const auto value = convert(content);
        if (key == nullptr || value == nullptr) return nullptr;
        CFDictionarySetValue(dictionary.get(), key.get(), value.get());
    }
    return dictionary;
}

} // namespace

std::optional<Preferences::Dictionary>
UserDefaultsPreferences::dictionary(const std::string& key) const {
    const auto name = makeString(key);
    if (name == nullptr) return {};
    const Owned<CFPropertyListRef> value(
        CFPreferencesCopyAppValue(name.get(), kCFPreferencesCurrentApplication));
    return mapOf<Dictionary>(
        value.get(), [](CFTypeRef record) { return mapOf<Dictionary::mapped_type>(record, text); });
}

std::error_code UserDefaultsPreferences::set(const std::string& key, const Dictionary& value) {
    const auto name = makeString(key);
    const auto dictionary = makeDictionary(value, [](const Dictionary::mapped_type& record) {
        return makeDictionary(record, [](const std::string& entry) { return makeString(entry); });
    });
    if (name == nullptr || dictionary == nullptr)
        return std::make_error_code(std::errc::illegal_byte_sequence);

    CFPreferencesSetAppValue(name.get(), dictionary.get(), kCFPreferencesCurrentApplication);
    if (!CFPreferencesAppSynchronize(kCFPreferencesCurrentApplication))
        return std::make_error_code(std::errc::io_error);
    return {};
}

} // namespace brevane
