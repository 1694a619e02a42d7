// SPDX-License-Identifier: MIT
#include "JsonMembers.h"
#include "RandomJson.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>

using namespace brevane;
using namespace brevane::test;
using namespace std::string_literals;
namespace json = boost::json;

RC_GTEST_PROP(ScanJsonObject, TellsOfTheMembersThatBoostBuilds, ()) {
    const std::string document = R"({"first":0,"rest":)" + test::randomJson(4) + "}";
    const auto members = membersOf(document);
    RC_ASSERT(members.has_value());
    RC_ASSERT(members->size() == 2U);
    const json::value whole = json::parse(document);
    RC_ASSERT(json::parse(members->back().second) == whole.at("rest"));
}

RC_GTEST_PROP(ScanJsonObject, AgreesWithBoostOnDamagedDocuments, ()) {
    std::string document = "{\"a\":" + test::randomJson(4) + "}";
    const int changes = *rc::gen::inRange(1, 4);
    for (int i = 0; i < changes; ++i) {
        const auto at = *rc::gen::inRange<std::size_t>(0, document.size());
        const char byte =
            *rc::gen::oneOf(rc::gen::arbitrary<char>(),
                            rc::gen::elementOf("{}[]\",:\\/u09dDeE+-. \n\t\r\0\x80\xC3\xED"s));
        switch (*rc::gen::inRange(0, 3)) {
        case 0:
            document[at] = byte;
            break;
        case 1:
            document.insert(at, 1, byte);
            break;
        default:
            document.erase(at, 1);
        }
        if (document.empty()) break;
    }
    const boost::system::error_code error = boostError(document);
    // Boost has to hold a number; to the scanner its digits are enough.
    RC_PRE(error != json::error::exponent_overflow);
    RC_ASSERT(membersOf(document).has_value() == !error);
}
