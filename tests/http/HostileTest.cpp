// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <filesystem>

namespace brevane::test {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

class Hostile : public WireTest {
protected:
    Hostile() {
        writeFile(root / "a.txt", "a");
        writeFile(folder / "secret", "secret");
    }

    // Over both protocols, in one piece: for requests too long to be split at every byte.
    void expectAnswerToLong(const std::string& request, const std::string& expected) {
        EXPECT_EQ(answer(request, Family::ipv4), expected);
        EXPECT_EQ(answer(request, Family::ipv6), expected);
    }

    // The server sends nothing and keeps the connection open until the client ends it.
    void expectNoAnswer(std::string_view bytes) {
        for (const Family family : {Family::ipv4, Family::ipv6}) {
            Client client(server.port, family);
            client.send(bytes);
            client.endSending();
            EXPECT_EQ(client.receiveAll(), "") << ::testing::PrintToString(bytes.substr(0, 80));
        }
        EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
    }
};

TEST_F(Hostile, TraversalLeadsNowhereInAnyEncoding) {
    for (const std::string target :
         {"/..", "/../", "/../secret", "/../../../../../../etc/passwd", "/%2e%2e/secret",
          "/%2E%2E%2fsecret", "/..%2fsecret", "/a/..%2f..%2fsecret", "/./.././secret",
          "/a.txt/../../secret", "..", "../secret", "%2e%2e%2fsecret", "//../secret",
          "/../secret%00", "/../secret?x", "/%2e%2e?x"})
        expectAnswer("GET " + target + " HTTP/1.1\r\n\r\n", forbidden);
    for (const std::string target :
         {"/..%5csecret", "/..\\secret", "/%5c..%5csecret", "/%252e%252e/secret", "/..%252fsecret",
          "/%c0%ae%c0%ae/secret", "/..%c0%afsecret", "/%e0%80%ae%e0%80%ae/secret",
          "/\xC0\xAE\xC0\xAE/secret", "/%u002e%u002e/secret", "/.../secret", "/.%2e%ff/secret",
          "/%00", "/a.txt%00", "/%00/../..%00", "/secret"})
        expectAnswer("GET " + target + " HTTP/1.1\r\n\r\n", notFound);
}

TEST_F(Hostile, ANulInTheTargetIsNotFound) {
    expectAnswer("GET /a.txt\0 HTTP/1.1\r\n\r\n"sv, notFound);
}

TEST_F(Hostile, OtherFormsOfTargetsAreOrdinaryPaths) {
    expectAnswer("GET http://host/a.txt HTTP/1.1\r\n\r\n", notFound);
    expectAnswer("GET http://host/../../a.txt HTTP/1.1\r\n\r\n", textFileAnswer("a"));
    expectAnswer("GET * HTTP/1.1\r\n\r\n", notFound);
    expectAnswer("OPTIONS * HTTP/1.1\r\n\r\n", methodNotAllowed);
    expectAnswer("CONNECT host:443 HTTP/1.1\r\n\r\n", methodNotAllowed);
}

TEST_F(Hostile, AFolderIsNotAskedForByMarkupThatDotSegmentsTakeBack) {
    std::filesystem::create_directory(root / "sub");
    writeFile(root / "sub" / "index.html", "index");
    for (const std::string target :
         {"/%3Cscript%3Ealert(1)%3C%2Fscript%3E%2F..%2F..%2F", "/<script>x</script>/../../sub/",
          "/<b>/../", "/sub/../<b>/..", "/<b>/./../sub/", "/sub/./%3c/../", "/%3C/%2e%2e/sub",
          "<b>/../"}) {
        expectAnswer("GET " + target + " HTTP/1.1\r\n\r\n", badRequest);
        expectAnswer("HEAD " + target + " HTTP/1.1\r\n\r\n", badRequest);
    }
    expectAnswer("GET /<b>/../a.txt HTTP/1.1\r\n\r\n", textFileAnswer("a"));
    expectAnswer("GET /<b>/../nothing HTTP/1.1\r\n\r\n", notFound);
    expectAnswer("GET /<b>/../.. HTTP/1.1\r\n\r\n", forbidden);
}

TEST_F(Hostile, AFolderWhoseNameIsMarkupStandsAsItIs) {
    std::filesystem::create_directory(root / "<b>..");
    expectAnswer("GET /%3cb>..?../ HTTP/1.1\r\n\r\n", redirectAnswer("/<b>../"));
    expectAnswer("GET //<b>..// HTTP/1.1\r\n\r\n", listingAnswer("//<b>..//", parentLine));
}

TEST_F(Hostile, NoRedirectLeadsToAnotherHost) {
    std::filesystem::create_directory(root / "\\evil");
    for (const std::string before : {"", "\t", "\\", " "})
        std::filesystem::create_directories(root / before / "evil");
    for (const std::string target :
         {"//host/..", "//evil.example%2f..", "/%2Fevil.example/..", "/%5Cevil", "/\\evil",
          "//evil", "///evil", "/%09/evil", "/%5c%5cevil/../evil", "%5c/evil", "%5C%5c/../evil",
          "%20//evil"})
        expectAnswer("GET " + target + " HTTP/1.1\r\n\r\n", badRequest);
    expectAnswer("GET /.//evil HTTP/1.1\r\n\r\n", redirectAnswer("/.//evil/"));
    expectAnswer("GET //evil/ HTTP/1.1\r\n\r\n", listingAnswer("//evil/", parentLine));
}

TEST_F(Hostile, HugeTargetsAreNotFound) {
    expectAnswerToLong("GET /" + std::string(1 << 20, 'a') + " HTTP/1.1\r\n\r\n", notFound);
    std::string deep;
    for (int segment = 0; segment < 4096; ++segment)
        deep += "/a";
    expectAnswerToLong("GET " + deep + " HTTP/1.1\r\n\r\n", notFound);
}

TEST_F(Hostile, ThousandsOfDotSegmentsAreResolved) {
    std::string dots;
    std::string there;
    std::string up;
    for (int segment = 0; segment < 4096; ++segment) {
        dots += "/.";
        there += "/a/..";
        up += "/..";
    }
    expectAnswerToLong("GET " + dots + " HTTP/1.1\r\n\r\n", redirectAnswer(dots + "/"));
    expectAnswerToLong("GET " + there + "/a.txt HTTP/1.1\r\n\r\n", textFileAnswer("a"));
    expectAnswerToLong("GET " + up + " HTTP/1.1\r\n\r\n", forbidden);
}

TEST_F(Hostile, HeadersAreNeitherCountedNorMeasured) {
    std::string many = "GET /a.txt HTTP/1.1\r\n";
    for (int header = 0; header < 10000; ++header)
        many += "X-Header: value\r\n";
    expectAnswerToLong(many + "\r\n", textFileAnswer("a"));
    expectAnswerToLong("GET /a.txt HTTP/1.1\r\nX: " + std::string(64 << 20, 'x') + "\r\n\r\n",
                       textFileAnswer("a"));
}

TEST_F(Hostile, HeadersMayBeAnything) {
    for (const std::string headers :
         {"no colon\r\n", ": no name\r\n", "a b: c\r\n", "X: \x01\x02\x7f\r\n", " folded\r\n",
          "X: a\rb\nc\r\n", "Host: a\r\nHost: b\r\n", "Expect: 100-continue\r\n",
          "Range: bytes=0-0\r\n", "If-Modified-Since: Fri, 01 Jan 2100 00:00:00 GMT\r\n",
          "Upgrade: h2c\r\nConnection: Upgrade, HTTP2-Settings\r\n", "Connection: keep-alive\r\n",
          "Accept-Encoding: gzip\r\n", "X: \xFF\xFE\r\n"})
        expectAnswer("GET /a.txt HTTP/1.1\r\n" + headers + "\r\n", textFileAnswer("a"));
}

TEST_F(Hostile, TheVersionIsNotLookedAt) {
    for (const std::string version : {"", " ", " HTTP/0.9", " HTTP/1.0", " HTTP/9.9", " nonsense",
                                      " HTTP/1.1 and more", "  HTTP/1.1"})
        expectAnswer("GET /a.txt" + version + "\r\n\r\n", textFileAnswer("a"));
}

TEST_F(Hostile, OddLineEndsArePartOfTheLine) {
    expectAnswer("GET /a.txt HTTP/1.1\n\r\n\r\n", textFileAnswer("a"));
    expectAnswer("GET /a.txt\nHTTP/1.1\r\n\r\n", notFound);
    expectAnswer("GET /a.txt\r HTTP/1.1\r\n\r\n", notFound);
    expectAnswer("GET\t/a.txt\tHTTP/1.1\r\n\r\n", badRequest);
    expectAnswer(" GET /a.txt HTTP/1.1\r\n\r\n", methodNotAllowed);
}

TEST_F(Hostile, AHeadThatNeverEndsIsNeverAnswered) {
    expectNoAnswer("");
    expectNoAnswer("GET /a.txt HTTP/1.1\n\n");
    expectNoAnswer("GET /a.txt HTTP/1.1\r\r");
    expectNoAnswer("GET /a.txt\r\n");
    expectNoAnswer("GET /a.txt HTTP/1.1\r\nHost: h\r\n");
    expectNoAnswer("GET /a.txt HTTP/1.1\r\nHost: h\r\n\r");
}

TEST_F(Hostile, OtherProtocolsGetWhatTheirBytesAmountTo) {
    expectAnswer("PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", methodNotAllowed);
    expectAnswer("PROXY TCP4 192.0.2.1 192.0.2.2 5 80\r\nGET / HTTP/1.1\r\n\r\n", methodNotAllowed);
    expectAnswer("SSH-2.0-OpenSSH_9.2\r\n\r\n", badRequest);
    const std::string hello("\x16\x03\x01\x00\x2f\x01\x00\x00\x2b\x03\x03"s);
    expectNoAnswer(hello + std::string(32, '\xAB') + "\x00\x00\x02\x13\x01\x01\x00"s);
    expectAnswer("\x0D\x0A\x0D\x0A\x00\x0D\x0A\x51\x55\x49\x54\x0A"sv, badRequest);
}

TEST_F(Hostile, AByteOrderMarkIsPartOfTheMethod) {
    expectAnswer("\xEF\xBB\xBFGET /a.txt HTTP/1.1\r\n\r\n", methodNotAllowed);
    expectAnswer("\xFF\xFEGET /a.txt HTTP/1.1\r\n\r\n", methodNotAllowed);
}

TEST_F(Hostile, FramingThatLiesChangesNothing) {
    for (const std::string headers :
         {"Content-Length: 1000000000000\r\n", "Content-Length: -5\r\n", "Content-Length: x\r\n",
          "Content-Length: 5\r\nContent-Length: 6\r\n", "Transfer-Encoding: chunked\r\n",
          "Content-Length: 3\r\nTransfer-Encoding: chunked\r\n"})
        for (const std::string body : {"", "0\r\n\r\n", "ffffffffffffffff\r\n", "abcdefgh"}) {
            Client client(server.port);
            client.send("GET /a.txt HTTP/1.1\r\n" + headers + "\r\n" + body);
            EXPECT_EQ(client.receiveAll(), textFileAnswer("a"));
        }
    expectAnswer("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n",
                 methodNotAllowed);
}

TEST_F(Hostile, ByPipeliningOnlyTheFirstRequestIsAnswered) {
    const std::string request = "GET /a.txt HTTP/1.1\r\n\r\n";
    std::string pipeline;
    for (int count = 0; count < 1000; ++count)
        pipeline += request;
    expectAnswerToLong(pipeline, textFileAnswer("a"));
}

} // namespace
} // namespace brevane::test
