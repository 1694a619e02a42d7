// SPDX-License-Identifier: MIT
#include "JsonDecoding.h"

#include "JsonScan.h"

namespace brevane {

boost::json::parse_options strictJson() {
    boost::json::parse_options options;
    options.max_depth = maxJsonDepth;
    return options;
}

bool read(const boost::json::value& value, std::string& text) {
    const auto* const string = value.if_string();
    if (string == nullptr) return false;
    text.assign(string->data(), string->size());
    return true;
}

bool read(const boost::json::value& value, bool& truth) {
    const bool* const boolean = value.if_bool();
    if (boolean == nullptr) return false;
    truth = *boolean;
    return true;
}

bool read(const boost::json::value& value, std::vector<std::string>& list) {
    const auto* const array = value.if_array();
    if (array == nullptr) return false;
    for (const auto& element : *array)
        if (!read(element, list.emplace_back())) return false;
    return true;
}

} // namespace brevane
