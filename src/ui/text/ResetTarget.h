// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>

namespace brevane {

/// What a reset stops.
enum class ResetTarget { all, serves, funnels };

/// The window's texts for a reset.
struct ResetTexts {
    std::string_view title;   ///< of the confirmation
    std::string_view message; ///< of the confirmation
    std::string_view toast;   ///< shown when the reset is done
};

[[nodiscard]] constexpr ResetTexts resetTexts(ResetTarget target) {
    switch (target) {
    case ResetTarget::serves:
        return {"Reset All Serves?", "This will stop all active serves (tailnet-only).",
                "Serves stopped"};
    case ResetTarget::funnels:
        return {"Reset All Funnels?", "This will stop all active funnels (public internet).",
                "Funnels stopped"};
    case ResetTarget::all:
        break;
    }
    return {"Reset All Shares?", "This will stop all active serves and funnels.",
            "All shares stopped"};
}

} // namespace brevane
