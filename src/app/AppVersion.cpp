// SPDX-License-Identifier: MIT
#include "AppVersion.h"

#ifdef __APPLE__
#include <CoreFoundation/CoreFoundation.h>
#else
#include "CommandLine.h"
#include "QtText.h"
#endif

namespace brevane {

QVariant shortVersionString() {
#ifdef __APPLE__
    const CFTypeRef value = CFBundleGetValueForInfoDictionaryKey(
        CFBundleGetMainBundle(), CFSTR("CFBundleShortVersionString"));
    if (value == nullptr || CFGetTypeID(value) != CFStringGetTypeID()) return {};
    return QString::fromCFString(static_cast<CFStringRef>(value));
#else
    return toQString(buildVersion());
#endif
}

QString appVersion(const QVariant& shortVersion) {
    return shortVersion.typeId() == QMetaType::QString ? shortVersion.toString() : "1.0";
}

} // namespace brevane
