// SPDX-License-Identifier: MIT
#pragma once

// The part of Core Foundation that src/ and tests/ use, declared from Apple's developer
// documentation, for builds without Apple's headers.

#include <MacTypes.h>

extern "C" {

typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef UInt32 CFStringEncoding;
typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef struct __CFBundle* CFBundleRef;
typedef const struct __CFData* CFDataRef;
typedef struct __CFError* CFErrorRef;
typedef CFIndex CFPropertyListFormat;
typedef unsigned long CFOptionFlags;
typedef struct CFDictionaryKeyCallBacks CFDictionaryKeyCallBacks;
typedef struct CFDictionaryValueCallBacks CFDictionaryValueCallBacks;

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };
enum : CFOptionFlags { kCFPropertyListImmutable = 0 };

extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFStringRef kCFPreferencesCurrentApplication;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    return {location, length};
}

CFTypeID CFGetTypeID(CFTypeRef object);
void CFRelease(CFTypeRef object);

#define CFSTR(literal)                                                                             \
    static_cast<CFStringRef>(                                                                      \
        static_cast<const void*>(__builtin___CFStringMakeConstantString("" literal "")))

CFTypeID CFStringGetTypeID(void);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex size,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* characters,
                                         CFIndex count);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                         UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                         CFIndex capacity, CFIndex* used);

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);

CFTypeID CFDictionaryGetTypeID(void);
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks);
CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFDictionaryRef dictionary);
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                  const void** values);
void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application);
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef application);
Boolean CFPreferencesAppSynchronize(CFStringRef application);

CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex size);
CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef* error);

CFBundleRef CFBundleGetMainBundle(void);
CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);

} // extern "C"
