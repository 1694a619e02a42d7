// SPDX-License-Identifier: MIT
#include "TailscaleStatusJSON.h"

#include "BadDocuments.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace brevane::test {
namespace {

const std::string runningNode = R"("BackendState":"Running","Self":{"DNSName":"n.ts.net.",)"
                                R"("TailscaleIPs":["100.64.0.1","fd7a::1"],"Online":true,)"
                                R"("HostName":"n"})";

TEST(DecodeTailscaleStatus, OnlyBackendStateDecodesWithoutSelf) {
    const auto status = decodeTailscaleStatus(R"({"BackendState":"Running"})");
    ASSERT_TRUE(status);
    EXPECT_EQ(status->BackendState, "Running");
    EXPECT_FALSE(status->selfNode);
}

TEST(DecodeTailscaleStatus, EveryFieldIsRead) {
    const auto status = decodeTailscaleStatus("{" + runningNode + "}");
    ASSERT_TRUE(status);
    EXPECT_EQ(status->BackendState, "Running");
    ASSERT_TRUE(status->selfNode);
    EXPECT_EQ(status->selfNode->DNSName, "n.ts.net.");
    EXPECT_EQ(status->selfNode->TailscaleIPs, (std::vector<std::string>{"100.64.0.1", "fd7a::1"}));
    EXPECT_EQ(status->selfNode->Online, true);
    EXPECT_EQ(status->selfNode->HostName, "n");
}

TEST(DecodeTailscaleStatus, SelfWithoutBackendStateFails) {
    EXPECT_FALSE(decodeTailscaleStatus(R"({"Self":{"DNSName":"n.ts.net."}})"));
    EXPECT_FALSE(decodeTailscaleStatus("{}"));
}

TEST(DecodeTailscaleStatus, BackendStateOfAnotherTypeFails) {
    for (std::string_view value : {"null", "1", "true", "[]", "{}", "[\"Running\"]"})
        EXPECT_FALSE(decodeTailscaleStatus(R"({"BackendState":)" + std::string(value) + "}"))
            << value;
}

TEST(DecodeTailscaleStatus, BackendStateInsideAnotherMemberDoesNotCount) {
    EXPECT_FALSE(decodeTailscaleStatus(R"({"Peer":{"BackendState":"Running"}})"));
    EXPECT_FALSE(decodeTailscaleStatus(R"({"Self":{"BackendState":"Running"}})"));
    EXPECT_FALSE(decodeTailscaleStatus(R"([{"BackendState":"Running"}])"));
}

TEST(DecodeTailscaleStatus, KeysAreCaseSensitive) {
    EXPECT_FALSE(decodeTailscaleStatus(R"({"backendState":"Running"})"));
    const auto status =
        decodeTailscaleStatus(R"({"BackendState":"Running","self":1,"selfNode":2})");
    ASSERT_TRUE(status);
    EXPECT_FALSE(status->selfNode);
}

TEST(DecodeTailscaleStatus, NullSelfIsTheSameAsNoSelf) {
    const auto status = decodeTailscaleStatus(R"({"BackendState":"Running","Self":null})");
    ASSERT_TRUE(status);
    EXPECT_FALSE(status->selfNode);
}

TEST(DecodeTailscaleStatus, FieldsOfSelfMayBeMissingOrNull) {
    for (std::string_view self :
         {R"({})", R"({"DNSName":null,"TailscaleIPs":null,"Online":null,"HostName":null})"}) {
        const auto status =
            decodeTailscaleStatus(R"({"BackendState":"Running","Self":)" + std::string(self) + "}");
        ASSERT_TRUE(status && status->selfNode) << self;
        EXPECT_FALSE(status->selfNode->DNSName);
        EXPECT_FALSE(status->selfNode->TailscaleIPs);
        EXPECT_FALSE(status->selfNode->Online);
        EXPECT_FALSE(status->selfNode->HostName);
    }
}

TEST(DecodeTailscaleStatus, AListedKeyOfAnotherTypeFails) {
    for (std::string_view self :
         {R"([])", R"("n")", R"(1)", R"(true)", R"({"DNSName":1})", R"({"DNSName":["n"]})",
          R"({"TailscaleIPs":"100.64.0.1"})", R"({"TailscaleIPs":{}})", R"({"TailscaleIPs":[1]})",
          R"({"TailscaleIPs":["100.64.0.1",null]})", R"({"Online":"true"})", R"({"Online":1})",
          R"({"HostName":false})"})
        EXPECT_FALSE(
            decodeTailscaleStatus(R"({"BackendState":"Running","Self":)" + std::string(self) + "}"))
            << self;
}

TEST(DecodeTailscaleStatus, OfARepeatedKeyTheLastOneCounts) {
    const auto status = decodeTailscaleStatus(
        R"({"Self":{"HostName":"a"},"BackendState":1,"Self":{"DNSName":7,"DNSName":"b"},)"
        R"("BackendState":"Stopped","BackendState":"Running"})");
    ASSERT_TRUE(status && status->selfNode);
    EXPECT_EQ(status->BackendState, "Running");
    EXPECT_EQ(status->selfNode->DNSName, "b");
    EXPECT_FALSE(status->selfNode->HostName);
    EXPECT_FALSE(decodeTailscaleStatus(R"({"BackendState":"Running","BackendState":1})"));
}

TEST(DecodeTailscaleStatus, EscapesInKeysAndTextsAreUndone) {
    const auto status = decodeTailscaleStatus(
        R"({"Backend\u0053tate":"R\u00fcn\n\ud83d\ude00","S\u0065lf":{"\u0048ostName":"\"\u0000\""}})");
    ASSERT_TRUE(status && status->selfNode);
    EXPECT_EQ(status->BackendState, "R\xC3\xBCn\n\xF0\x9F\x98\x80");
    EXPECT_EQ(status->selfNode->HostName, std::string("\"\0\"", 3));
}

TEST(DecodeTailscaleStatus, OtherMembersArePassedOver) {
    for (const auto& [what, member] : oddMembers()) {
        const auto before = decodeTailscaleStatus("{" + member + "," + runningNode + "}");
        const auto after = decodeTailscaleStatus(" {" + runningNode + "," + member + "}\r\n\t ");
        ASSERT_TRUE(before && before->selfNode) << what;
        ASSERT_TRUE(after && after->selfNode) << what;
        EXPECT_EQ(before->selfNode->HostName, "n") << what;
        EXPECT_EQ(after->BackendState, "Running") << what;
    }
}

TEST(DecodeTailscaleStatus, UnknownMembersOfSelfArePassedOver) {
    const auto status = decodeTailscaleStatus(
        R"({"BackendState":"Running","Self":{"Tags":[null,{"a":[1.5,-2,18446744073709551615,true]}],)"
        R"("Long\u0041":"x\ny","HostName":"n","Cap":{}}})");
    ASSERT_TRUE(status && status->selfNode);
    EXPECT_EQ(status->selfNode->HostName, "n");
}

TEST(DecodeTailscaleStatus, BadDocumentsFail) {
    for (const auto& [what, document] : badDocuments(runningNode))
        EXPECT_FALSE(decodeTailscaleStatus(document)) << what;
}

TEST(DecodeTailscaleStatus, DocumentsCutAnywhereFail) {
    const std::string document = "{" + runningNode + R"(,"Peer":{"k":{"a":[1,"\u00e9",true]}}})";
    ASSERT_TRUE(decodeTailscaleStatus(document));
    for (std::size_t size = 0; size < document.size(); ++size)
        EXPECT_FALSE(decodeTailscaleStatus(std::string_view(document).substr(0, size))) << size;
}

} // namespace
} // namespace brevane::test
