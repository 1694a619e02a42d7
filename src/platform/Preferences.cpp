// SPDX-License-Identifier: MIT
#include "Preferences.h"

#ifdef __APPLE__
#include "UserDefaultsPreferences.h"
#else
#include "FilePreferences.h"
#endif

namespace brevane {

std::unique_ptr<Preferences> makeUserPreferences() {
#ifdef __APPLE__
    return std::make_unique<UserDefaultsPreferences>();
#else
    return std::make_unique<FilePreferences>(FilePreferences::defaultFile());
#endif
}

} // namespace brevane
