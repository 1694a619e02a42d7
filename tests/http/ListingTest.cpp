// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <filesystem>

namespace brevane::test {
namespace {

using Listing = WireTest;

TEST_F(Listing, FoldersComeFirstThenFilesEachInCodePointOrder) {
    writeFile(root / "B.txt", "");
    writeFile(root / "a.txt", "");
    std::filesystem::create_directory(root / "z");
    expectAnswer("GET / HTTP/1.1\r\n\r\n",
                 listingAnswer("/", folderLine("z") + fileLine("B.txt") + fileLine("a.txt")));
}

TEST_F(Listing, TheRootHasNoParentLineAndASubfolderHasItFirst) {
    std::filesystem::create_directory(root / "sub");
    writeFile(root / "sub" / "x", "");
    expectAnswer("GET / HTTP/1.1\r\n\r\n", listingAnswer("/", folderLine("sub")));
    expectAnswer("GET /sub/ HTTP/1.1\r\n\r\n", listingAnswer("/sub/", parentLine + fileLine("x")));
}

TEST_F(Listing, HiddenFilesAreLeftOut) {
    std::filesystem::create_directory(root / "sub");
    writeFile(root / "sub" / ".hidden", "");
    writeFile(root / "sub" / "..more", "");
    std::filesystem::create_directory(root / "sub" / ".folder");
    expectAnswer("GET /sub/ HTTP/1.1\r\n\r\n", listingAnswer("/sub/", parentLine));
}

TEST_F(Listing, NamesStandUnescaped) {
    writeFile(root / "a<b>.txt", "");
    writeFile(root / "c&d \"e\" #f?g%20.txt", "");
    expectAnswer("GET / HTTP/1.1\r\n\r\n",
                 listingAnswer("/", fileLine("a<b>.txt") + fileLine("c&d \"e\" #f?g%20.txt")));
}

} // namespace
} // namespace brevane::test
