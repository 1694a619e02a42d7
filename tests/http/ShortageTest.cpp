// SPDX-License-Identifier: MIT
#include "DescriptorLimit.h"
#include "WireTest.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <ctime>

namespace brevane::test {
namespace {

using Shortage = WireTest;

int lowestFreeDescriptor() {
    const Descriptor next(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    return next.get();
}

TEST_F(Shortage, WithoutDescriptorsTheServerWaitsAndThenServesAgainByItself) {
    writeFile(root / "a.txt", "a");
    const std::int64_t port = server.port;
    std::vector<Client> clients;
    {
        // The client's own socket takes the last descriptor.
        const DescriptorLimit limit(lowestFreeDescriptor() + 1);
        clients.emplace_back(port);
        clients.back().send("GET /a.txt HTTP/1.1\r\n\r\n");

        const std::clock_t before = std::clock();
        pollfd answered{.fd = clients.back().descriptor(), .events = POLLIN, .revents = 0};
        EXPECT_EQ(::poll(&answered, 1, 500), 0);
        EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 4) << "processor time of half a second";
    }
    EXPECT_EQ(clients.back().receiveAll(), textFileAnswer("a"));
    EXPECT_TRUE(server.isRunning);
}

TEST_F(Shortage, WithoutADescriptorForItAFileIsForbidden) {
    writeFile(root / "a.txt", "a");
    const std::int64_t port = server.port;
    std::string file;
    std::string folderPage;
    {
        // Sanitizers need descriptors to check objects of the test, so none is used here.
        const DescriptorLimit limit(lowestFreeDescriptor() + 2);
        file = answerTo(port, std::array<std::string_view, 1>{"GET /a.txt HTTP/1.1\r\n\r\n"},
                        Family::ipv4);
        folderPage =
            answerTo(port, std::array<std::string_view, 1>{"GET / HTTP/1.1\r\n\r\n"}, Family::ipv4);
    }
    EXPECT_EQ(file, forbidden);
    EXPECT_EQ(folderPage, listingAnswer("/", ""));
}

TEST_F(Shortage, FailsTheFirstServersStartWhichCanBeTriedAgain) {
    writeFile(root / "a.txt", "a");
    ServerPool unused;
    FileHTTPServer first(root.native(), unused);
    int left = 0;
    for (bool started = false; !started; ++left) {
        const DescriptorLimit limit(lowestFreeDescriptor() + left);
        const auto port = first.startListener(0);
        started = port.has_value();
        if (!started) {
            EXPECT_EQ(port.error(), std::errc::too_many_files_open);
        }
        EXPECT_EQ(first.isRunning, started);
    }
    EXPECT_GT(left, 2);
    EXPECT_EQ(answerTo(first.port, std::array<std::string_view, 1>{"GET /a.txt HTTP/1.1\r\n\r\n"},
                       Family::ipv4),
              textFileAnswer("a"));
}

TEST_F(Shortage, DoesNotKeepAServerFromStopping) {
    const std::int64_t port = server.port;
    std::vector<Client> waiting;
    {
        const DescriptorLimit limit(lowestFreeDescriptor() + 1);
        waiting.emplace_back(port);
    }
    server.listener->cancel();
    EXPECT_FALSE(server.isRunning);
}

} // namespace
} // namespace brevane::test
