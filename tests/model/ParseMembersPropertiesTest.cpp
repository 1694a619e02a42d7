// SPDX-License-Identifier: MIT
#include "JsonDecoding.h"
#include "RandomJson.h"

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <array>
#include <string>
#include <string_view>

namespace brevane::test {

using namespace std::string_literals;
namespace json = boost::json;

namespace {

constexpr std::array<std::string_view, 1> wanted{"wanted"};

RC_GTEST_PROP(ParseMembers, BuildsWantedMembersAndNoOthers, ()) {
    const std::string value = randomJson(4);
    const auto members = parseMembers(R"({"first":)" + randomJson(4) + R"(,"wanted":)" + value +
                                          R"(,"last":)" + randomJson(4) + "}",
                                      wanted);
    RC_ASSERT(members.has_value());
    RC_ASSERT(*members == json::object({{"wanted", json::parse(value)}}));
}

RC_GTEST_PROP(ParseMembers, ChecksSkippedMembersAsStrictlyAsWantedOnes, ()) {
    std::string value = randomJson(4);
    const int changes = *rc::gen::inRange(1, 4);
    for (int i = 0; i < changes && !value.empty(); ++i) {
        const auto at = *rc::gen::inRange<std::size_t>(0, value.size());
        const char byte =
            *rc::gen::oneOf(rc::gen::arbitrary<char>(),
                            rc::gen::elementOf("{}[]\",:\\/u09dDeE+-. \n\t\r\0\x80\xC3\xED"s));
        switch (*rc::gen::inRange(0, 3)) {
        case 0:
            value[at] = byte;
            break;
        case 1:
            value.insert(at, 1, byte);
            break;
        default:
            value.erase(at, 1);
        }
    }
    const bool isValid = parseMembers(R"({"wanted":)" + value + "}", wanted).has_value();
    RC_ASSERT(parseMembers(R"({"skipped":)" + value + "}", wanted).has_value() == isValid);
}

} // namespace
} // namespace brevane::test
