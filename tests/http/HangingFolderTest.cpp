// SPDX-License-Identifier: MIT
#include "Gate.h"
#include "WireTest.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <vector>

namespace brevane::test {
namespace {

// A folder in which some files hang, like those of a network folder without a network.
class HangingFolder : public WireTest {
protected:
    HangingFolder() {
        writeFile(root / "held.txt", "held");
        writeFile(root / "a.txt", "a");
        writeFile(other / "a.txt", "other");
    }
    void SetUp() override {
        if (!Gate::isAllowed()) GTEST_SKIP() << "holding the opening of files takes root's rights";
    }

    std::vector<Client> clientsThatAsk(std::string_view target, std::size_t count) {
        std::vector<Client> clients;
        while (clients.size() < count) {
            clients.emplace_back(server.port);
            clients.back().send("GET " + std::string(target) + " HTTP/1.1\r\n\r\n");
        }
        return clients;
    }

    static std::string getFrom(const FileHTTPServer& asked, const std::string& target) {
        const std::string request = "GET " + target + " HTTP/1.1\r\n\r\n";
        return answerTo(asked.port, std::array{std::string_view(request)}, Family::ipv4);
    }

    TemporaryFolder other;
};

TEST_F(HangingFolder, DoesNotStopOtherShares) {
    FileHTTPServer second(other.path.native(), pool());
    ASSERT_TRUE(second.startListener(0));
    Gate gate(root / "held.txt", Gate::Held::openings);
    auto clients = clientsThatAsk("/held.txt", 100);
    for (int count = 0; count < 100; ++count)
        ASSERT_EQ(getFrom(second, "/a.txt"), textFileAnswer("other"));
    gate.open();
    for (Client& client : clients)
        EXPECT_EQ(client.receiveAll(), textFileAnswer("held"));
    EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
}

TEST_F(HangingFolder, DoesNotStopOtherSharesThoughASecondOneHangsToo) {
    const TemporaryFolder intact;
    writeFile(intact / "a.txt", "intact");
    writeFile(other / "held.txt", "also held");
    FileHTTPServer second(other.path.native(), pool());
    FileHTTPServer third(intact.path.native(), pool());
    ASSERT_TRUE(second.startListener(0));
    ASSERT_TRUE(third.startListener(0));
    Gate gate(root / "held.txt", Gate::Held::openings);
    Gate otherGate(other / "held.txt", Gate::Held::openings);
    Client client(server.port);
    client.send("GET /held.txt HTTP/1.1\r\n\r\n");
    gate.waitForOne();
    Client otherClient(second.port);
    otherClient.send("GET /held.txt HTTP/1.1\r\n\r\n");
    otherGate.waitForOne();
    EXPECT_EQ(getFrom(third, "/a.txt"), textFileAnswer("intact"));
    gate.open();
    otherGate.open();
    EXPECT_EQ(client.receiveAll(), textFileAnswer("held"));
    EXPECT_EQ(otherClient.receiveAll(), textFileAnswer("also held"));
}

TEST_F(HangingFolder, DoesNotStopItsOwnOtherRequestsWhileSevenHang) {
    Gate gate(root / "held.txt", Gate::Held::openings);
    auto clients = clientsThatAsk("/held.txt", 7);
    for (int count = 0; count < 100; ++count)
        ASSERT_EQ(get("/a.txt"), textFileAnswer("a"));
    gate.open();
    for (Client& client : clients)
        EXPECT_EQ(client.receiveAll(), textFileAnswer("held"));
}

TEST_F(HangingFolder, IsServedAgainWhenItAnswersAgain) {
    for (int round = 0; round < 3; ++round) {
        Gate gate(root / "held.txt", Gate::Held::openings);
        auto clients = clientsThatAsk("/held.txt", 50);
        // One of them is held; the others may still be queued behind it.
        gate.waitForOne();
        gate.open();
        for (Client& client : clients)
            EXPECT_EQ(client.receiveAll(), textFileAnswer("held"));
    }
}

TEST_F(HangingFolder, GetsOverRequestsThatNobodyWaitsForAnyMore) {
    Gate gate(root / "held.txt", Gate::Held::openings);
    clientsThatAsk("/held.txt", 100).clear();
    gate.waitForOne();
    gate.open();
    EXPECT_EQ(get("/held.txt"), textFileAnswer("held"));
}

TEST_F(HangingFolder, DoesNotKeepThePoolFromEnding) {
    auto ending = std::make_unique<ServerPool>();
    auto served = std::make_unique<FileHTTPServer>(root.native(), *ending);
    ASSERT_TRUE(served->startListener(0));
    Gate gate(root / "held.txt", Gate::Held::openings);
    Client client(served->port);
    client.send("GET /held.txt HTTP/1.1\r\n\r\n");
    gate.waitForOne();
    served.reset();
    ending.reset();
    // The thread that hung ends by itself.
    gate.open();
    client.receiveAll();
}

// A file that is not in the page cache, so that its bytes have to be read.
class UncachedFile : public HangingFolder {
protected:
    UncachedFile() {
        writeFile(path_, std::string(size, 'l'));
        const Descriptor file(::open(path_.c_str(), O_RDONLY | O_CLOEXEC));
        ::fsync(file.get());
        ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_DONTNEED);
    }

    static void hangUp(Client& client) {
        const linger reset{.l_onoff = 1, .l_linger = 0};
        ::setsockopt(client.descriptor(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
        client.close();
    }

    static std::size_t openDescriptors() {
        const std::filesystem::directory_iterator open("/proc/self/fd");
        return static_cast<std::size_t>(std::distance(begin(open), end(open)));
    }

    static constexpr std::size_t size = 32 << 20;
    const std::filesystem::path path_ = root / "large.txt";
};

TEST_F(UncachedFile, ThatCannotBeReadIsForbiddenToHeadAsToGet) {
    for (const std::string_view method : {"HEAD", "GET"}) {
        Gate gate(path_, Gate::Held::readings);
        Client client(server.port);
        client.send(std::string(method) + " /large.txt HTTP/1.1\r\n\r\n");
        gate.waitForOne();
        while (gate.letHeldGoOn(true) == 0) {
        }
        EXPECT_EQ(client.receiveAll(), forbidden);
    }
}

TEST_F(UncachedFile, IsReadNoFurtherForClientsThatHaveGone) {
    const std::size_t before = openDescriptors();
    Gate gate(path_, Gate::Held::readings);
    auto clients = clientsThatAsk("/large.txt", 200);
    gate.waitForOne();
    // All have been accepted, and most of them are waiting for a loader.
    ASSERT_EQ(get("/a.txt"), textFileAnswer("a"));
    for (Client& client : clients)
        hangUp(client);

    // Each read is 256 kB, and a loader does four of them between two checks of the client.
    std::size_t readings = 0;
    while (openDescriptors() > before + 1)
        readings += gate.letHeldGoOn();
    EXPECT_LE(readings, 8 * 4U);
    gate.open();
    EXPECT_EQ(get("/a.txt"), textFileAnswer("a"));
}

TEST_F(UncachedFile, ThatHangsStopsNoOther) {
    writeFile(root / "other.txt", std::string(size, 'o'));
    Gate gate(path_, Gate::Held::readings);
    auto clients = clientsThatAsk("/large.txt", 7);
    gate.waitForOne();
    EXPECT_TRUE(get("/other.txt") == textFileAnswer(std::string(size, 'o')));
    gate.open();
    for (Client& client : clients)
        EXPECT_TRUE(client.receiveAll() == textFileAnswer(std::string(size, 'l')));
}

} // namespace
} // namespace brevane::test
