// SPDX-License-Identifier: MIT
#include "EntryExtraction.h"

#include "EntryLines.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace brevane::test {
namespace {

std::vector<ServeEntry> entriesOf(std::string_view document,
                                  std::string_view dnsName = "n.ts.net") {
    const auto config = decodeServeConfig(document);
    EXPECT_TRUE(config) << document;
    return config ? extractEntries(*config, dnsName) : std::vector<ServeEntry>{};
}

using Lines = std::vector<std::string>;

TEST(ExtractEntries, NoMapsGiveNoRows) {
    EXPECT_TRUE(entriesOf("{}").empty());
    EXPECT_TRUE(
        entriesOf(
            R"({"TCP":{},"Web":{},"AllowFunnel":{"n.ts.net:443":true},"Foreground":{"s":{}}})")
            .empty());
}

TEST(ExtractEntries, AWebServerWithoutHandlersGivesNoRow) {
    EXPECT_TRUE(entriesOf(R"({"Web":{"h:443":{},"h:8443":{"Handlers":{}}}})").empty());
}

TEST(ExtractEntries, TwoHandlersGiveTwoRowsOfOneHostPort) {
    EXPECT_EQ(
        entryLines(entriesOf(
            R"({"Web":{"h:443":{"Handlers":{"/":{"Proxy":"http://127.0.0.1:1"},"/b":{"Text":"hi"}}}}})")),
        (Lines{"serve h:443 / Port Proxy 'http://127.0.0.1:1' background",
               "serve h:443 /b Text 'hi' background"}));
}

TEST(ExtractEntries, ProxyWinsOverPathAndPathOverText) {
    EXPECT_EQ(
        entryLines(
            entriesOf(R"({"Web":{"h:443":{"Handlers":{)"
                      R"("/1":{"Proxy":"p","Path":"f","Text":"t"},"/2":{"Path":"f","Text":"t"},)"
                      R"("/3":{"Text":"t"},"/4":{"Proxy":"","Path":"f"}}}}})")),
        (Lines{"serve h:443 /1 Port Proxy 'p' background",
               "serve h:443 /2 File/Directory 'f' background", "serve h:443 /3 Text 't' background",
               "serve h:443 /4 Port Proxy '' background"}));
}

TEST(ExtractEntries, AHandlerOfUnknownKindIsAProxyWithoutTarget) {
    EXPECT_EQ(entryLines(entriesOf(R"({"Web":{"h:443":{"Handlers":{"/":{"Redirect":"301:x"}}}}})")),
              (Lines{"serve h:443 / Port Proxy '' background"}));
}

TEST(ExtractEntries, ATcpForwardIsListedUnderTheDnsName) {
    const std::string_view document = R"({"TCP":{"22":{"TCPForward":"localhost:22"}}})";
    EXPECT_EQ(entryLines(entriesOf(document)),
              (Lines{"serve n.ts.net:22 / TCP Forward 'localhost:22' background"}));
    EXPECT_EQ(entryLines(entriesOf(document, "")),
              (Lines{"serve :22 / TCP Forward 'localhost:22' background"}));
}

TEST(ExtractEntries, ATcpPortWithoutForwardGivesNoRow) {
    EXPECT_TRUE(entriesOf(R"({"TCP":{"443":{"HTTPS":true},"80":{}}})").empty());
}

TEST(ExtractEntries, ATcpForwardIsFunnelledUnderTheFormedHostPort) {
    EXPECT_EQ(entryLines(entriesOf(
                  R"({"TCP":{"22":{"TCPForward":"a"},"23":{"TCPForward":"b"}},)"
                  R"("AllowFunnel":{"n.ts.net:22":true,"n.ts.net:23":false,"23":true}})")),
              (Lines{"serve n.ts.net:23 / TCP Forward 'b' background",
                     "funnel n.ts.net:22 / TCP Forward 'a' background"}));
}

TEST(ExtractEntries, AForegroundRowAsksItsOwnFunnelMapOnly) {
    const std::string web = R"("Web":{"h:443":{"Handlers":{"/":{"Text":"t"}}}})";
    const std::string funnel = R"("AllowFunnel":{"h:443":true})";
    EXPECT_EQ(
        entryLines(entriesOf("{" + web + "," + funnel + R"(,"Foreground":{"s":{)" + web + "}}}")),
        (Lines{"serve h:443 / Text 't' foreground", "funnel h:443 / Text 't' background"}));
    EXPECT_EQ(
        entryLines(entriesOf("{" + web + R"(,"Foreground":{"s":{)" + web + "," + funnel + "}}}")),
        (Lines{"serve h:443 / Text 't' background", "funnel h:443 / Text 't' foreground"}));
}

TEST(ExtractEntries, ForegroundTcpForwardsAreNotListed) {
    EXPECT_TRUE(entriesOf(R"({"Foreground":{"s":{"TCP":{"22":{"TCPForward":"a"}}}}})").empty());
}

TEST(ExtractEntries, TheFunnelledRowIsLastAndTheOthersKeepTheirOrder) {
    EXPECT_EQ(
        entryLines(entriesOf(
            R"({"Foreground":{"s":{"Web":{"h:9":{"Handlers":{"/":{"Text":"f"}}}}}},)"
            R"("TCP":{"22":{"TCPForward":"x"}},)"
            R"("AllowFunnel":{"h:1":true},)"
            R"("Web":{"h:1":{"Handlers":{"/":{"Text":"a"}}},"h:2":{"Handlers":{"/":{"Text":"b"}}}}})")),
        (Lines{"serve h:2 / Text 'b' background", "serve n.ts.net:22 / TCP Forward 'x' background",
               "serve h:9 / Text 'f' foreground", "funnel h:1 / Text 'a' background"}));
}

TEST(ExtractEntries, EveryCallGivesFreshIds) {
    const std::string_view document = R"({"Web":{"h:443":{"Handlers":{"/":{"Proxy":"p"}}}}})";
    const auto first = entriesOf(document);
    const auto second = entriesOf(document);
    ASSERT_EQ(first.size(), 1U);
    ASSERT_EQ(second.size(), 1U);
    EXPECT_NE(first[0].id, second[0].id);
}

} // namespace
} // namespace brevane::test
