// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

namespace brevane {

/// The program's version: on macOS "CFBundleShortVersionString" of its bundle, elsewhere the
/// build's. Invalid if there is none.
[[nodiscard]] QVariant shortVersionString();

/// The version as shown: "1.0" if it is missing or not a string.
[[nodiscard]] QString appVersion(const QVariant& shortVersion);

} // namespace brevane
