// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

namespace brevane {

/// What stands for the version of the program: on macOS "CFBundleShortVersionString" of its bundle,
/// elsewhere what the build was given. Invalid where there is none.
[[nodiscard]] QVariant shortVersionString();

/// The version as shown: "1.0" where it is missing or not a text.
[[nodiscard]] QString appVersion(const QVariant& shortVersion);

} // namespace brevane
