// SPDX-License-Identifier: MIT
#pragma once

#include <boost/json/parse.hpp>
#include <boost/json/value_to.hpp>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace brevane::test {

/// One recorded command.
struct RecordedCase {
    bool isStatusQuery() const {
        return command.starts_with("status") && command.contains("--json");
    }
    bool isServeStatusQuery() const {
        return command == "serve status --json" || command == "funnel status --json";
    }

    std::string name; ///< version, group and arguments
    std::string group;
    std::string command; ///< the arguments, separated by spaces
    std::int64_t exitStatus;
    std::string output;           ///< standard output, then standard error
    std::string errors;           ///< standard error only
    std::string serveStatusAfter; ///< what `serve status --json` printed afterwards
};

inline const std::vector<RecordedCase>& recordedCases() {
    static const auto cases = [] {
        std::ifstream file(TEST_DATA "/../data/cli-cases.json");
        const std::string text(std::istreambuf_iterator<char>(file), {});
        const boost::json::value record = boost::json::parse(text);
        std::vector<RecordedCase> all;
        for (const auto& version : record.as_object())
            for (const boost::json::value& recorded : version.value().as_array()) {
                const auto field = [&](std::string_view key) {
                    return boost::json::value_to<std::string>(recorded.at(key));
                };
                std::string command;
                for (const boost::json::value& word : recorded.at("args").as_array())
                    command.append(command.empty() ? "" : " ").append(word.as_string());
                all.push_back({std::string(version.key()) + ", " + field("group") + ": " + command,
                               field("group"), command, recorded.at("exit").as_int64(),
                               field("stdout") + field("stderr"), field("stderr"),
                               field("serve_status_after")});
            }
        return all;
    }();
    return cases;
}

} // namespace brevane::test
