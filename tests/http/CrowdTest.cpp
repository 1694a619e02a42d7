// SPDX-License-Identifier: MIT
#include "Acceptor.h"
#include "Loaders.h"
#include "WireTest.h"

#include <boost/asio/post.hpp>

#include <poll.h>
#include <sched.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

namespace brevane::test {
namespace {

// Many clients of a server on one processor, that is, with one handler and one sender.
class Crowd : public ::testing::Test {
protected:
    static constexpr std::size_t largeSize = 1 << 20;

    Crowd() {
        writeFile(folder_ / "a.txt", "a");
        writeFile(folder_ / "large.txt", std::string(largeSize, 'l'));
        std::thread([this] { startOnOneProcessor(); }).join();
    }
    ~Crowd() override {
        acceptor_->stop();
        served_.reset();
        threads_->end();
    }

    [[nodiscard]] std::vector<Client> clientsThatAsk(std::string_view target, std::size_t count) {
        std::vector<Client> clients;
        while (clients.size() < count) {
            clients.emplace_back(acceptor_->port());
            clients.back().send("GET " + std::string(target) + " HTTP/1.1\r\n\r\n");
        }
        return clients;
    }

    // Whether an answer arrives. The timeout is reached only if it never does.
    static bool isAnswered(const Client& client) {
        pollfd wanted{.fd = client.descriptor(), .events = POLLIN, .revents = 0};
        return ::poll(&wanted, 1, 10000) == 1;
    }

    // Blocks the thread of an event loop until the latch opens.
    static void hold(Executor executor, std::latch& latch) {
        boost::asio::post(executor, [&latch] { latch.wait(); });
    }
    // The same, but after `turns` turns of the event loop.
    static void holdAfter(int turns, Executor executor, std::latch& latch) {
        boost::asio::post(executor, [turns, executor, &latch] {
            turns == 0 ? latch.wait() : holdAfter(turns - 1, executor, latch);
        });
    }

    TemporaryFolder folder_;
    std::latch begin_{1}; // The latches must outlive the threads that wait for them.
    std::latch end_{1};
    std::shared_ptr<ServerThreads> threads_;
    std::shared_ptr<ServedFolder> served_;
    std::shared_ptr<Acceptor> acceptor_;

private:
    // Threads inherit the calling thread's processor affinity.
    void startOnOneProcessor() {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(::sched_getcpu(), &one);
        ASSERT_EQ(::sched_setaffinity(0, sizeof one, &one), 0);
        threads_ = ServerThreads::start();
        served_ = std::make_shared<ServedFolder>(folder_.path.native(), *threads_,
                                                 threads_->makeLoaders());
        acceptor_ = std::make_shared<Acceptor>(served_, isRunning_);
        ASSERT_FALSE(acceptor_->listen(0));
        acceptor_->start();
    }

    std::atomic<bool> isRunning_ = true;
};

TEST_F(Crowd, OfDownloadsDoesNotStandBeforeSmallRequests) {
    hold(threads_->senders(), end_);
    auto downloads = clientsThatAsk("/large.txt", 300);
    auto others = clientsThatAsk("/a.txt", 100);
    for (Client& client : others)
        ASSERT_TRUE(isAnswered(client) && client.receiveAll() == textFileAnswer("a"));
    end_.count_down();
    for (Client& client : downloads)
        EXPECT_GT(client.countAll(), largeSize);
}

TEST_F(Crowd, IsAcceptedInOneTurnOfTheEventLoopAndNotInOneTurnEach) {
    hold(threads_->handlers(), begin_);
    auto clients = clientsThatAsk("/a.txt", 50);
    holdAfter(10, threads_->handlers(), end_);
    begin_.count_down();
    std::size_t answered = 0;
    while (answered < clients.size() && isAnswered(clients[answered]))
        ++answered;
    end_.count_down();
    EXPECT_EQ(answered, clients.size());
}

} // namespace
} // namespace brevane::test
