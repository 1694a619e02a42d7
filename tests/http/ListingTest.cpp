// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <vector>

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

TEST_F(Listing, OddNamesStandAsTheBytesTheyAre) {
    std::string lines;
    const std::string longest(255, 'n');
    for (const std::string name : {" ", "\"", "#", "%41", "&amp;", "'", "<", "?", "a\nb",
                                   longest.c_str(), "\xC3\xA9", "\xE9", "\xF0\x9F\x93\x81"}) {
        writeFile(root / name, "");
        lines += fileLine(name);
    }
    expectAnswer("GET / HTTP/1.1\r\n\r\n", listingAnswer("/", lines));
}

TEST_F(Listing, ALinkIsAFileEvenToAFolderAndSoIsEverythingElse) {
    std::filesystem::create_directory(folder / "outside");
    std::filesystem::create_symlink(folder / "outside", root / "folder");
    std::filesystem::create_symlink("nothing", root / "dangling");
    ASSERT_EQ(::mkfifo((root / "fifo").c_str(), 0666), 0);
    expectAnswer("GET / HTTP/1.1\r\n\r\n",
                 listingAnswer("/", fileLine("dangling") + fileLine("fifo") + fileLine("folder")));
}

TEST_F(Listing, ItsTitleIsThePathAsAskedFor) {
    std::filesystem::create_directory(root / "sub <dir>");
    std::filesystem::create_directory(root / "sub &dir>");
    const std::string lines = parentLine + folderLine("sub &dir>") + folderLine("sub <dir>");
    expectAnswer("GET //sub%20%3cdir>/?q HTTP/1.1\r\n\r\n",
                 listingAnswer("//sub <dir>/", parentLine));
    expectAnswer("GET /sub%20&dir>/./../sub%20%26dir>/?q HTTP/1.1\r\n\r\n",
                 listingAnswer("/sub &dir>/./../sub &dir>/", parentLine));
    expectAnswer("GET // HTTP/1.1\r\n\r\n", listingAnswer("//", lines));
    expectAnswer("GET /caf\xE9/../ HTTP/1.1\r\n\r\n", listingAnswer("/café/../", lines));
}

TEST_F(Listing, HeadSendsItsLengthAlone) {
    writeFile(root / "a.txt", "");
    const std::string answer = listingAnswer("/", fileLine("a.txt"));
    expectAnswer("HEAD / HTTP/1.1\r\n\r\n", answer.substr(0, answer.find("\r\n\r\n") + 4));
}

TEST_F(Listing, OfThousandsIsInOrder) {
    std::vector<std::string> names;
    for (int number = 0; number < 3000; ++number)
        names.push_back("common-start-" + std::to_string(number % 7) + "-again-" +
                        std::to_string(number * 7919 % 3000) +
                        (number % 3 == 0   ? "é"
                         : number % 3 == 1 ? ""
                                           : "Z"));
    std::ranges::sort(names);
    std::string lines;
    for (const std::string& name : names) {
        writeFile(root / name, "");
        lines += fileLine(name);
    }
    EXPECT_EQ(get("/"), listingAnswer("/", lines));
}

TEST_F(Listing, OfAnyLengthIsSentWhole) {
    std::string lines;
    // Exceeds the 256 kB buffer that a thread has for responses.
    for (int number = 1000; number < 1700; ++number) {
        const std::string name = std::string(196, 'n') + std::to_string(number);
        writeFile(root / name, "");
        lines += fileLine(name);
        if (number % 100 != 99) continue;
        EXPECT_EQ(get("/"), listingAnswer("/", lines));
    }
}

} // namespace
} // namespace brevane::test
