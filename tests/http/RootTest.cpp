// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace brevane::test {
namespace {

namespace fs = std::filesystem;

class Root : public ::testing::Test {
protected:
    std::string get(const std::string& directory, const std::string& target) {
        FileHTTPServer server(directory, pool);
        EXPECT_TRUE(server.startListener(0));
        const std::string request = "GET " + target + " HTTP/1.1\r\n\r\n";
        return answerTo(server.port, std::array{std::string_view(request)}, Family::ipv6);
    }

    ServerPool pool;
    TemporaryFolder folder;
    std::string path = folder.path.string();
};

TEST_F(Root, IsStandardizedButItsLinksAreNotFollowed) {
    writeFile(folder / "a.txt", "a");
    fs::create_directory(folder / "sub");
    EXPECT_EQ(get(path + "/", "/a.txt"), textFileAnswer("a"));
    EXPECT_EQ(get(path + "/sub/.././/", "/a.txt"), textFileAnswer("a"));
    EXPECT_EQ(get(path + "/none/..", "/a.txt"), textFileAnswer("a"));

    fs::create_symlink(path + "/sub", folder / "link");
    EXPECT_EQ(get(path + "/link/..", "/a.txt"), textFileAnswer("a"));
}

TEST_F(Root, MayBeTheWholeDisk) {
    writeFile(folder / "a.txt", "a");
    EXPECT_EQ(get("/", path + "/a.txt"), textFileAnswer("a"));
    EXPECT_EQ(get("/", "/../../.." + path + "/a.txt"), textFileAnswer("a"));
    EXPECT_EQ(get("/", path), redirectAnswer(path + "/"));
    EXPECT_EQ(get("/", "/.."), redirectAnswer("/../"));
}

TEST_F(Root, MayBeALinkToAFolder) {
    fs::create_directory(folder / "real");
    writeFile(folder / "real" / "a.txt", "a");
    writeFile(folder / "b.txt", "b");
    fs::create_symlink("real", folder / "link");
    EXPECT_EQ(get(path + "/link", "/a.txt"), textFileAnswer("a"));
    EXPECT_EQ(get(path + "/link", "/"), listingAnswer("/", fileLine("a.txt")));
    EXPECT_EQ(get(path + "/link", "/../b.txt"), forbidden);
    EXPECT_EQ(get(path + "/link", "/../real/a.txt"), forbidden);
}

TEST_F(Root, MayBeMissingOrVanishAndComeBack) {
    FileHTTPServer server(path + "/later", pool);
    ASSERT_TRUE(server.startListener(0));
    const auto answer = [&] {
        return answerTo(server.port, std::array<std::string_view, 1>{"GET / HTTP/1.1\r\n\r\n"},
                        Family::ipv4);
    };
    EXPECT_EQ(answer(), notFound);
    fs::create_directory(folder / "later");
    EXPECT_EQ(answer(), listingAnswer("/", ""));
    fs::remove(folder / "later");
    EXPECT_EQ(answer(), notFound);
}

TEST_F(Root, ThatIsAFileIsServedForEveryPathThatLeadsToIt) {
    writeFile(folder / "a.txt", "a");
    EXPECT_EQ(get(path + "/a.txt", "/"), textFileAnswer("a"));
    EXPECT_EQ(get(path + "/a.txt", "/b"), notFound);
}

TEST_F(Root, TwoHundredServersShareOnePool) {
    writeFile(folder / "a.txt", "a");
    std::vector<std::unique_ptr<FileHTTPServer>> servers;
    for (int count = 0; count < 200; ++count) {
        servers.push_back(std::make_unique<FileHTTPServer>(path, pool));
        ASSERT_TRUE(servers.back()->startListener(0));
    }
    for (const auto& server : servers)
        EXPECT_EQ(answerTo(server->port,
                           std::array<std::string_view, 1>{"GET /a.txt HTTP/1.1\r\n\r\n"},
                           Family::ipv4),
                  textFileAnswer("a"));
}

} // namespace
} // namespace brevane::test
