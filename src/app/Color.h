// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

namespace brevane::Color {

/// The maker's brand colour, the same in light and dark.
inline constexpr QColor orvale{208, 30, 30};

} // namespace brevane::Color
