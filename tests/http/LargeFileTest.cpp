// SPDX-License-Identifier: MIT
#include "WireTest.h"

#include <filesystem>
#include <fstream>

namespace brevane::test {
namespace {

namespace fs = std::filesystem;

// More than the socket buffers of both ends hold, so that the server is still sending when the
// first bytes arrive.
constexpr std::size_t fileSize = 64 << 20;

class LargeFiles : public WireTest {
protected:
    LargeFiles() {
        writeFile(root / "a.txt", "a");
        writeFile(root / "large.txt", std::string(fileSize, 'l'));
    }

    // The response when `change` happens after its first byte has arrived.
    template <class Change>
    std::string answerDuring(Change change) {
        Client client(server.port);
        client.send("GET /large.txt HTTP/1.1\r\n\r\n");
        std::string answer = client.receive(1);
        change();
        return answer + client.receiveAll();
    }

    const std::string whole = textFileAnswer(std::string(fileSize, 'l'));
};

TEST_F(LargeFiles, ThatAreCutShortWhileTheyAreSentEndTheirResponseEarlyAndNothingElse) {
    const std::string answer = answerDuring([&] { fs::resize_file(root / "large.txt", 0); });
    EXPECT_LT(answer.size(), whole.size());
    EXPECT_EQ(answer.substr(0, 200), whole.substr(0, 200));
    EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
    EXPECT_EQ(get("/large.txt"), textFileAnswer(""));
}

TEST_F(LargeFiles, ThatLoseTheirEndWhileTheyAreSentHoldNoByteThatWasNotThere) {
    const std::string answer =
        answerDuring([&] { fs::resize_file(root / "large.txt", fileSize - 100); });
    EXPECT_LT(answer.size(), whole.size());
    EXPECT_TRUE(whole.starts_with(answer));
}

TEST_F(LargeFiles, ThatAreWrittenAnewWhileTheyAreSentHoldNoByteThatWasNotThere) {
    const std::string answer =
        answerDuring([&] { writeFile(root / "large.txt", std::string(fileSize, 'n')); });
    const std::size_t begin = whole.find('l', whole.find("\r\n\r\n"));
    EXPECT_EQ(answer.find_first_not_of("ln", begin), answer.npos);
    EXPECT_LE(answer.size(), whole.size());
}

TEST_F(LargeFiles, ThatGrowWhileTheyAreSentAreSentAsLongAsTheLengthSays) {
    const std::string answer = answerDuring(
        [&] { std::ofstream(root / "large.txt", std::ios::app) << std::string(1000000, 'g'); });
    EXPECT_TRUE(answer == whole);
}

TEST_F(LargeFiles, ThatAreRemovedOrReplacedWhileTheyAreSentAreSentWhole) {
    const std::string answer = answerDuring([&] {
        fs::remove(root / "large.txt");
        writeFile(root / "large.txt", "new");
    });
    EXPECT_TRUE(answer == whole);
    EXPECT_EQ(get("/large.txt"), textFileAnswer("new"));
}

TEST_F(LargeFiles, AreAnsweredToHeadWithTheirLengthAlone) {
    EXPECT_EQ(head("/large.txt"), whole.substr(0, whole.size() - fileSize));
}

TEST_F(LargeFiles, AreFollowedByWhatTheClientStillSends) {
    Client client(server.port);
    client.send("GET /large.txt HTTP/1.1\r\nContent-Length: 4\r\n\r\n");
    std::string answer = client.receive(1);
    client.send("body");
    answer += client.receiveAll();
    EXPECT_TRUE(answer == whole);
}

TEST_F(LargeFiles, FinishThoughTheirServerStops) {
    std::vector<Client> clients;
    for (int count = 0; count < 100; ++count) {
        clients.emplace_back(server.port);
        clients.back().send("GET /large.txt HTTP/1.1\r\n\r\n");
        ASSERT_EQ(clients.back().receive(4), "HTTP");
    }
    server.isRunning = false;
    server.listener->cancel();
    server.listener.reset();
    EXPECT_THROW(Client(server.port), std::system_error);
    for (Client& client : clients)
        EXPECT_EQ(4 + client.countAll(), whole.size());
}

} // namespace
} // namespace brevane::test
