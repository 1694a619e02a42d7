// SPDX-License-Identifier: MIT
#include "ServeConfigJSON.h"

#include "BadDocuments.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace brevane::test {
namespace {

const std::string oneProxy =
    R"("Web":{"n.ts.net:443":{"Handlers":{"/":{"Proxy":"http://127.0.0.1:3000"}}}})";

TEST(DecodeServeConfig, AnEmptyObjectHasNoneOfTheMaps) {
    const auto config = decodeServeConfig("{}");
    ASSERT_TRUE(config);
    EXPECT_FALSE(config->TCP);
    EXPECT_FALSE(config->Web);
    EXPECT_FALSE(config->AllowFunnel);
    EXPECT_FALSE(config->Foreground);
}

TEST(DecodeServeConfig, AnUnknownMemberBesideProxyIsIgnored) {
    const auto config = decodeServeConfig(
        R"({"Web":{"n.ts.net:443":{"Handlers":{"/":{"Redirect":7,"Proxy":"http://127.0.0.1:3000"}},"More":[]}}})");
    ASSERT_TRUE(config && config->Web);
    const auto& handlers = config->Web->at("n.ts.net:443").Handlers;
    ASSERT_TRUE(handlers);
    EXPECT_EQ(handlers->at("/").Proxy, "http://127.0.0.1:3000");
    EXPECT_FALSE(handlers->at("/").Path);
    EXPECT_FALSE(handlers->at("/").Text);
}

TEST(DecodeServeConfig, EveryFieldIsRead) {
    const auto config = decodeServeConfig(
        R"({"TCP":{"443":{"HTTPS":true},"22":{"TCPForward":"localhost:22","HTTPS":false}},)"
        R"("Web":{"h:443":{"Handlers":{"/p":{"Path":"/srv"},"/t":{"Text":"hi"}}},"h:8443":{}},)"
        R"("AllowFunnel":{"h:443":true,"h:8443":false},)"
        R"("Foreground":{"0a1b":{"TCP":{"80":{}},"Web":{"h:80":{"Handlers":{}}},"AllowFunnel":{}}}})");
    ASSERT_TRUE(config);
    EXPECT_EQ(config->TCP->at("443").HTTPS, true);
    EXPECT_EQ(config->TCP->at("22").TCPForward, "localhost:22");
    EXPECT_EQ(config->TCP->at("22").HTTPS, false);
    EXPECT_EQ(config->Web->at("h:443").Handlers->at("/p").Path, "/srv");
    EXPECT_EQ(config->Web->at("h:443").Handlers->at("/t").Text, "hi");
    EXPECT_FALSE(config->Web->at("h:8443").Handlers);
    EXPECT_TRUE(config->AllowFunnel->at("h:443"));
    EXPECT_FALSE(config->AllowFunnel->at("h:8443"));
    const ServeConfigFgJSON& foreground = config->Foreground->at("0a1b");
    EXPECT_EQ(foreground.TCP->size(), 1U);
    EXPECT_TRUE(foreground.Web->at("h:80").Handlers->empty());
    EXPECT_TRUE(foreground.AllowFunnel->empty());
}

TEST(DecodeServeConfig, HttpsAloneDecodesWithoutTcpForward) {
    const auto config = decodeServeConfig(R"({"TCP":{"443":{"HTTPS":true}}})");
    ASSERT_TRUE(config && config->TCP);
    EXPECT_EQ(config->TCP->at("443").HTTPS, true);
    EXPECT_FALSE(config->TCP->at("443").TCPForward);
}

TEST(DecodeServeConfig, NullWebIsTheSameAsNoWeb) {
    const auto config =
        decodeServeConfig(R"({"TCP":null,"Web":null,"AllowFunnel":null,"Foreground":null})");
    ASSERT_TRUE(config);
    EXPECT_FALSE(config->TCP);
    EXPECT_FALSE(config->Web);
    EXPECT_FALSE(config->AllowFunnel);
    EXPECT_FALSE(config->Foreground);
}

TEST(DecodeServeConfig, NullFieldsAreAbsentAtEveryLevel) {
    const auto config = decodeServeConfig(
        R"({"TCP":{"1":{"HTTPS":null,"TCPForward":null}},)"
        R"("Web":{"h:1":{"Handlers":null},"h:2":{"Handlers":{"/":{"Proxy":null,"Path":null,"Text":null}}}},)"
        R"("Foreground":{"s":{"TCP":null,"Web":null,"AllowFunnel":null}}})");
    ASSERT_TRUE(config);
    EXPECT_FALSE(config->TCP->at("1").HTTPS);
    EXPECT_FALSE(config->TCP->at("1").TCPForward);
    EXPECT_FALSE(config->Web->at("h:1").Handlers);
    EXPECT_FALSE(config->Web->at("h:2").Handlers->at("/").Proxy);
    EXPECT_FALSE(config->Foreground->at("s").Web);
}

TEST(DecodeServeConfig, ANullInsideAMapFails) {
    for (std::string_view document :
         {R"({"TCP":{"443":null}})", R"({"Web":{"h:443":null}})",
          R"({"Web":{"h:443":{"Handlers":{"/":null}}}})", R"({"AllowFunnel":{"h:443":null}})",
          R"({"Foreground":{"s":null}})", R"({"Foreground":{"s":{"AllowFunnel":{"h:443":null}}}})"})
        EXPECT_FALSE(decodeServeConfig(document)) << document;
}

TEST(DecodeServeConfig, AllowFunnelWithATextForABooleanFails) {
    EXPECT_FALSE(decodeServeConfig("{" + oneProxy + R"(,"AllowFunnel":{"n.ts.net:443":"true"}})"));
}

TEST(DecodeServeConfig, AListedKeyOfAnotherTypeFailsTheWholeDocument) {
    for (std::string_view member :
         {R"("TCP":[])",
          R"("TCP":"443")",
          R"("TCP":{"443":[]})",
          R"("TCP":{"443":{"HTTPS":1}})",
          R"("TCP":{"443":{"HTTPS":"true"}})",
          R"("TCP":{"443":{"TCPForward":22}})",
          R"("Web":[])",
          R"("Web":{"h:1":"x"})",
          R"("Web":{"h:1":{"Handlers":[]}})",
          R"("Web":{"h:1":{"Handlers":{"/":"x"}}})",
          R"("Web":{"h:1":{"Handlers":{"/":{"Proxy":3000}}}})",
          R"("Web":{"h:1":{"Handlers":{"/":{"Path":{}}}}})",
          R"("Web":{"h:1":{"Handlers":{"/":{"Text":false}}}})",
          R"("AllowFunnel":[])",
          R"("AllowFunnel":true)",
          R"("AllowFunnel":{"h:1":1})",
          R"("Foreground":[])",
          R"("Foreground":{"s":[]})",
          R"("Foreground":{"s":{"TCP":{"1":{"HTTPS":0}}}})",
          R"("Foreground":{"s":{"Web":{"h:1":{"Handlers":{"/":{"Text":1}}}}}})",
          R"("Foreground":{"s":{"AllowFunnel":{"h:1":"true"}}})"})
        EXPECT_FALSE(decodeServeConfig("{" + std::string(member) + "}")) << member;
}

TEST(DecodeServeConfig, OneMalformedHandlerFailsAllOthers) {
    EXPECT_FALSE(decodeServeConfig(
        R"({"Web":{"h:443":{"Handlers":{"/":{"Proxy":"http://127.0.0.1:1"},"/b":{"Proxy":2}}}}})"));
}

TEST(DecodeServeConfig, OfARepeatedKeyTheLastOneCounts) {
    const auto config = decodeServeConfig(
        R"({"Web":7,"TCP":{"1":{"TCPForward":"a"}},)"
        R"("Web":{"h:1":null,"h:1":{"Handlers":{"/":{"Text":"a","Text":"b"}}}},"TCP":{"2":{"TCPForward":"c"}}})");
    ASSERT_TRUE(config);
    EXPECT_EQ(config->Web->at("h:1").Handlers->at("/").Text, "b");
    EXPECT_EQ(config->TCP->size(), 1U);
    EXPECT_TRUE(config->TCP->contains("2"));
}

TEST(DecodeServeConfig, KeysOfMapsAreTakenAsTheyStand) {
    const auto config = decodeServeConfig(R"({"TCP":{"0443":{},"":{},"caf\u00e9":{}," x":{}}})");
    ASSERT_TRUE(config && config->TCP);
    for (std::string_view key : {"0443", "", "caf\xC3\xA9", " x"})
        EXPECT_TRUE(config->TCP->contains(key)) << key;
}

TEST(DecodeServeConfig, KeysOfRecordsAreCaseSensitive) {
    const auto config = decodeServeConfig(R"({"web":1,"tcp":[],"allowFunnel":{},"foreground":""})");
    ASSERT_TRUE(config);
    EXPECT_FALSE(config->Web || config->TCP || config->AllowFunnel || config->Foreground);
}

TEST(DecodeServeConfig, UnknownMembersArePassedOver) {
    for (const auto& [what, member] : oddMembers()) {
        const auto config = decodeServeConfig(" {" + member + "," + oneProxy + "}\n");
        ASSERT_TRUE(config && config->Web) << what;
        EXPECT_TRUE(config->Web->contains("n.ts.net:443")) << what;
    }
}

TEST(DecodeServeConfig, BadDocumentsFail) {
    for (const auto& [what, document] : badDocuments(oneProxy))
        EXPECT_FALSE(decodeServeConfig(document)) << what;
}

TEST(DecodeServeConfig, DocumentsCutAnywhereFail) {
    const std::string document = "{" + oneProxy + R"(,"AllowFunnel":{"n.ts.net:443":true}})";
    ASSERT_TRUE(decodeServeConfig(document));
    for (std::size_t size = 0; size < document.size(); ++size)
        EXPECT_FALSE(decodeServeConfig(std::string_view(document).substr(0, size))) << size;
}

} // namespace
} // namespace brevane::test
