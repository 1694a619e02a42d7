// SPDX-License-Identifier: MIT
#include "UrlPort.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

namespace brevane::test {
namespace {

constexpr std::optional<std::int64_t> none;

TEST(ExplicitPort, IsThePortThatTheUrlNames) {
    EXPECT_EQ(explicitPort("http://127.0.0.1:49231"), 49231);
    EXPECT_EQ(explicitPort("http://127.0.0.1:3000/api"), 3000);
    EXPECT_EQ(explicitPort("https+insecure://localhost:8443"), 8443);
    EXPECT_EQ(explicitPort("http://localhost:80?port=81#:82"), 80);
    EXPECT_EQ(explicitPort("//localhost:80"), 80);
}

TEST(ExplicitPort, IsNamedAlsoWhereItIsTheSchemesOwn) {
    EXPECT_EQ(explicitPort("http://h:80/"), 80);
    EXPECT_EQ(explicitPort("https://h:443/"), 443);
}

TEST(ExplicitPort, IsAbsentWhereTheUrlNamesNone) {
    EXPECT_EQ(explicitPort("http://localhost/"), none);
    EXPECT_EQ(explicitPort("http://localhost"), none);
    EXPECT_EQ(explicitPort("http://localhost:"), none);
    EXPECT_EQ(explicitPort("http://localhost:/"), none);
    EXPECT_EQ(explicitPort("http://localhost/a:80"), none);
    EXPECT_EQ(explicitPort("http://user:80@localhost/"), none);
    EXPECT_EQ(explicitPort("http://h%3A80/"), none);
}

TEST(ExplicitPort, TellsThePortFromAddressAndUser) {
    EXPECT_EQ(explicitPort("http://[::1]:8080/"), 8080);
    EXPECT_EQ(explicitPort("http://[::1]/"), none);
    EXPECT_EQ(explicitPort("http://user:1@h:2/"), 2);
}

TEST(ExplicitPort, IsAbsentInAHostAndPortWithoutScheme) {
    EXPECT_EQ(explicitPort("localhost:3000"), none);
    EXPECT_EQ(explicitPort("127.0.0.1:3000"), none);
    EXPECT_EQ(explicitPort("3000"), none);
    EXPECT_EQ(explicitPort(""), none);
}

TEST(ExplicitPort, IsAbsentInWhatIsNotAUrl) {
    EXPECT_EQ(explicitPort("http://h:8x"), none);
    EXPECT_EQ(explicitPort("http://h:80x/y"), none);
    EXPECT_EQ(explicitPort("http://h:80:90"), none);
    EXPECT_EQ(explicitPort("http://h:-1"), none);
    EXPECT_EQ(explicitPort("http://h:+80"), none);
    EXPECT_EQ(explicitPort("http://h: 80"), none);
    EXPECT_EQ(explicitPort("http://h:80 "), none);
    EXPECT_EQ(explicitPort("http://a b:80/"), none);
    EXPECT_EQ(explicitPort("http://h:80/\xFF"), none);
    EXPECT_EQ(explicitPort(std::string_view("http://h:80\0", 12)), none);
    EXPECT_EQ(explicitPort("http://h:\u0663"), none) << "digits are those of ASCII";
}

TEST(ExplicitPort, NeedNotBeAPortThatExists) {
    EXPECT_EQ(explicitPort("http://h:0"), 0);
    EXPECT_EQ(explicitPort("http://h:00080"), 80);
    EXPECT_EQ(explicitPort("http://h:99999"), 99999);
    EXPECT_EQ(explicitPort("http://h:9223372036854775807"), INT64_MAX);
}

TEST(ExplicitPort, IsAbsentWhereItIsAbsurdlyLong) {
    EXPECT_EQ(explicitPort("http://h:9223372036854775808"), none);
    EXPECT_EQ(explicitPort("http://h:" + std::string(100000, '9')), none);
}

} // namespace
} // namespace brevane::test
