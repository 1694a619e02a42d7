// SPDX-License-Identifier: MIT
#pragma once

/// The texts of Brevane's maker.
namespace brevane::maker {

constexpr const char* wordmarkFirst = "Orv";
constexpr const char* wordmarkSecond = "ale";             ///< in the brand colour
constexpr const char* tagline = "Small tools, well made"; ///< shown in capitals
constexpr const char* credit = "Designed and built by Orvale";
constexpr const char* webAddress = "orvale.example"; ///< as shown
constexpr const char* webSite = "https://orvale.example";

} // namespace brevane::maker
