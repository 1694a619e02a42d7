// SPDX-License-Identifier: MIT
#include "RequestHead.h"

#include <gtest/gtest.h>

namespace brevane::test {
namespace {

std::string pathOf(std::string_view target) {
    const auto head = parseRequestHead("GET " + std::string(target) + " HTTP/1.1\r\n\r\n");
    return head && *head ? (*head)->path : "no request";
}

TEST(ParseRequestHead, IsIncompleteUntilTheBlankLineHasCome) {
    const std::string_view request = "GET /a HTTP/1.1\r\nHost: h\r\n\r\n";
    for (std::size_t length = 0; length < request.size(); ++length)
        for (std::size_t searched = 0; searched <= length; ++searched)
            EXPECT_FALSE(parseRequestHead(request.substr(0, length), searched));
    for (std::size_t searched = 0; searched < request.size(); ++searched)
        EXPECT_TRUE(parseRequestHead(request, searched)) << searched;
}

TEST(ParseRequestHead, LineFeedsOrCarriageReturnsAloneEndNoHead) {
    EXPECT_FALSE(parseRequestHead("GET / HTTP/1.1\n\n"));
    EXPECT_FALSE(parseRequestHead("GET / HTTP/1.1\r\r"));
    EXPECT_FALSE(parseRequestHead("GET / HTTP/1.1\r\n\n\r\n"));
    EXPECT_FALSE(parseRequestHead("GET / HTTP/1.1\n\r\n\r"));
}

TEST(ParseRequestHead, EveryMalformedEscapeLeavesThePathUndecoded) {
    for (const std::string path :
         {"/%", "/%2", "/%%20", "/%2g", "/%g2", "/a%20b%", "/%-1", "/%+1", "/% 1", "/%0x"}) {
        if (path.contains(' ')) continue; // it would end the target
        EXPECT_EQ(pathOf(path), path);
    }
}

TEST(ParseRequestHead, AnEscapeThatGivesInvalidUtf8LeavesThePathUndecoded) {
    for (const std::string path : {"/%ff", "/%c0%af", "/%20%e2%82", "/%ed%a0%80", "/%f4%90%80%80"})
        EXPECT_EQ(pathOf(path), path);
    EXPECT_EQ(pathOf("/%F0%9F%93%81%c3%A9"), "/📁é");
}

TEST(ParseRequestHead, AllBytesDecideBetweenUtf8AndLatin1) {
    const std::string request = "GET /\xC3\xA9 HTTP/1.1\r\nX: y\r\n\r\n";
    EXPECT_EQ(parseRequestHead(request).value()->path, "/é");
    EXPECT_EQ(parseRequestHead(request + "\xFF").value()->path, "/Ã©");
    EXPECT_EQ(parseRequestHead("GET /\xE9 HTTP/1.1\r\n\r\n").value()->path, "/é");
    EXPECT_EQ(parseRequestHead("GET /a HTTP/1.1\r\nX: \xFF\r\n\r\n").value()->path, "/a");
}

TEST(ParseRequestHead, SaysWhetherTheClientSendsMore) {
    const auto follows = [](std::string_view request) {
        return parseRequestHead(request).value()->moreFollows;
    };
    EXPECT_FALSE(follows("GET / HTTP/1.1\r\nHost: h\r\n\r\n"));
    EXPECT_FALSE(follows("GET / HTTP/1.1\r\nX-Content-Length: 5\r\nContent-Length\r\n\r\n"));
    EXPECT_TRUE(follows("GET / HTTP/1.1\r\nHost: h\r\n\r\nG"));
    EXPECT_TRUE(follows("GET / HTTP/1.1\r\ncontent-LENGTH: 5\r\n\r\n"));
    EXPECT_TRUE(follows("GET / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding:chunked\r\n\r\n"));
}

} // namespace
} // namespace brevane::test
