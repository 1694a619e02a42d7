// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>

#include <optional>

namespace brevane {

/// What a desktop's settings ask of every window.
struct Look {
    bool isDark = false;
    bool hasHighContrast = false;
    bool isAnimated = true; ///< false stops movement that only decorates
    QColor accent{};        ///< of selected and focused controls; invalid for Brevane's own blue
    std::optional<QFont> font{}; ///< of ordinary text; none where Qt itself follows the desktop's

    friend bool operator==(const Look&, const Look&) = default;
};

} // namespace brevane
