// SPDX-License-Identifier: MIT
#pragma once

#include "JsonDecoding.h"
#include "JsonScan.h"

#include <boost/json/parse.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brevane::test {

using Members = std::vector<std::pair<std::string, std::string>>;

/// The members that the scanner tells of, in a buffer that ends where the document does.
inline std::optional<Members> membersOf(std::string_view document) {
    const std::vector<char> exact(document.begin(), document.end());
    Members members;
    const auto collect = [&](std::string_view key, std::string_view value) {
        members.emplace_back(key, value);
    };
    if (!scanJsonObject({exact.data(), exact.size()}, collect)) return std::nullopt;
    return members;
}

/// What Boost says of the document: nothing, if it is an object.
inline boost::system::error_code boostError(std::string_view document) {
    boost::system::error_code error;
    const auto value = boost::json::parse(document, error, {}, strictJson());
    if (!error && !value.is_object()) error = boost::json::error::not_object;
    return error;
}

} // namespace brevane::test
