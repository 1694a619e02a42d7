// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <filesystem>

namespace brevane::test {
namespace {

using Routing = WireTest;

TEST_F(Routing, AFolderWithoutItsSlashIsRedirectedAndWithItGivesItsIndexOrItsListing) {
    std::filesystem::create_directory(root / "docs");
    expectAnswer("GET /docs HTTP/1.1\r\n\r\n", redirectAnswer("/docs/"));
    expectAnswer("GET /docs/ HTTP/1.1\r\n\r\n", listingAnswer("/docs/", parentLine));
    writeFile(root / "docs/index.html", "<p>index");
    expectAnswer("GET /docs/ HTTP/1.1\r\n\r\n", fileAnswer("text/html; charset=utf-8", "<p>index"));
    expectAnswer("GET /docs HTTP/1.1\r\n\r\n", redirectAnswer("/docs/"));
}

TEST_F(Routing, ThePathIsPercentDecodedAndTheQueryIgnored) {
    writeFile(root / "my file.txt", "mine");
    expectAnswer("GET /my%20file.txt?x=1 HTTP/1.1\r\n\r\n", textFileAnswer("mine"));
    expectAnswer("GET /my%20file.txt?x=1?y=%zz HTTP/1.1\r\n\r\n", textFileAnswer("mine"));
}

TEST_F(Routing, AMalformedEscapeIsTakenLiterally) {
    writeFile(root / "a%2", "literal");
    expectAnswer("GET /a%2 HTTP/1.1\r\n\r\n", fileAnswer("application/octet-stream", "literal"));
}

TEST_F(Routing, APathOutsideTheRootIsForbiddenUnlessItBeginsLikeTheRoot) {
    writeFile(folder / "secret", "secret");
    std::filesystem::create_directory(folder / "site2");
    writeFile(folder / "site2" / "x.txt", "sibling");
    expectAnswer("GET /../secret HTTP/1.1\r\n\r\n", forbidden);
    expectAnswer("GET /../site2/x.txt HTTP/1.1\r\n\r\n", textFileAnswer("sibling"));
}

TEST_F(Routing, OnlyGetAndHeadInUpperCaseAreAllowed) {
    writeFile(root / "a.txt", "0123456789");
    for (const std::string method : {"get", "Get", "POST", "PUT", "DELETE", "OPTIONS", "GETT", ""})
        expectAnswer(method + " /a.txt HTTP/1.1\r\n\r\n", methodNotAllowed);
    expectAnswer("HEAD /a.txt HTTP/1.1\r\n\r\n",
                 "HTTP/1.1 200 OK\r\nContent-Type: text/plain; charset=utf-8\r\n"
                 "Content-Length: 10\r\nConnection: close\r\n\r\n");
}

TEST_F(Routing, ARequestLineOfOneWordIsABadRequest) {
    expectAnswer("GET\r\n\r\n", badRequest);
    expectAnswer("\r\n\r\n", badRequest);
    expectAnswer("\r\nGET / HTTP/1.1\r\n\r\n", badRequest);
}

TEST_F(Routing, AnEmptyTargetIsRedirectedToTheRoot) {
    expectAnswer("GET  HTTP/1.1\r\n\r\n", redirectAnswer("/"));
    expectAnswer("GET \r\n\r\n", redirectAnswer("/"));
    expectAnswer("GET ?query HTTP/1.1\r\n\r\n", redirectAnswer("/"));
}

TEST_F(Routing, WhatIsNotThereIsNotFound) {
    expectAnswer("GET /nothing HTTP/1.1\r\n\r\n", notFound);
    expectAnswer("HEAD /nothing HTTP/1.1\r\n\r\n", notFound);
}

TEST_F(Routing, ARedirectThatWouldBreakItsLineIsABadRequest) {
    std::filesystem::create_directory(root / "a\r\nX: y");
    std::filesystem::create_directory(root / "b\nc");
    std::filesystem::create_directory(root / "d\re");
    expectAnswer("GET /a%0d%0aX:%20y HTTP/1.1\r\n\r\n", badRequest);
    expectAnswer("GET /b%0ac HTTP/1.1\r\n\r\n", badRequest);
    expectAnswer("GET /d\re HTTP/1.1\r\n\r\n", badRequest);
    expectAnswer("GET /b%0ac/ HTTP/1.1\r\n\r\n", listingAnswer("/b\nc/", parentLine));
}

} // namespace
} // namespace brevane::test
