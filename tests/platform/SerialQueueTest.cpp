// SPDX-License-Identifier: MIT
#include "SerialQueue.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace brevane::test {
namespace {

// Waits until everything posted before has run.
void drain(SerialQueue& queue) {
    std::promise<void> reached;
    queue.post([&] { reached.set_value(); });
    reached.get_future().wait();
}

std::string nameOfThread(SerialQueue& queue) {
    std::array<char, 64> name{};
    queue.post([&] { pthread_getname_np(pthread_self(), name.data(), name.size()); });
    drain(queue);
    return name.data();
}

TEST(SerialQueue, RunsTasksInTheOrderOfPosting) {
    SerialQueue queue("order");
    std::vector<int> run;
    std::vector<int> posted;
    for (int i = 0; i < 1000; ++i) {
        posted.push_back(i);
        queue.post([&run, i] { run.push_back(i); });
    }
    drain(queue);
    EXPECT_EQ(run, posted);
}

TEST(SerialQueue, RunsOneTaskAtATimeOnOneThreadOfItsOwn) {
    SerialQueue queue("one");
    std::vector<std::thread::id> threads;
    std::vector<std::thread> posters;
    for (int poster = 0; poster < 4; ++poster)
        posters.emplace_back([&] {
            for (int i = 0; i < 250; ++i)
                queue.post([&] { threads.push_back(std::this_thread::get_id()); });
        });
    for (std::thread& poster : posters)
        poster.join();
    drain(queue);
    EXPECT_EQ(threads, std::vector<std::thread::id>(1000, threads.front()));
    EXPECT_NE(threads.front(), std::this_thread::get_id());
}

TEST(SerialQueue, RunsATaskPostedByATaskLater) {
    SerialQueue queue("nested");
    std::string run;
    std::promise<void> done;
    queue.post([&] {
        queue.post([&] {
            run += 'b';
            done.set_value();
        });
        run += 'a';
    });
    done.get_future().wait();
    EXPECT_EQ(run, "ab");
}

TEST(SerialQueue, NamesItsThread) {
    SerialQueue queue("tailscale");
    EXPECT_EQ(nameOfThread(queue), "tailscale");
}

TEST(SerialQueue, CutsALabelThatIsTooLongForTheSystem) {
    SerialQueue queue("a label of more than fifteen bytes");
    EXPECT_TRUE(nameOfThread(queue).starts_with("a label of more"));
}

TEST(SerialQueue, LetsTheRunningTaskEndBeforeItIsGone) {
    auto queue = std::make_optional<SerialQueue>("ending");
    std::promise<void> started;
    std::promise<void> mayEnd;
    bool ended = false;
    queue->post([&] {
        started.set_value();
        mayEnd.get_future().wait();
        ended = true;
    });
    started.get_future().wait();
    std::thread destroyer([&] { queue.reset(); });
    mayEnd.set_value();
    destroyer.join();
    EXPECT_TRUE(ended);
}

TEST(SerialQueue, DropsTasksThatWaitWhenItGoes) {
    auto queue = std::make_optional<SerialQueue>("dropping");
    const auto witness = std::make_shared<int>();
    // Posts itself forever: if the destructor ran queued tasks, it would never return.
    std::function<void()> again = [&, witness] { queue->post(again); };
    queue->post(again);
    drain(*queue);
    queue.reset();
    again = nullptr;
    EXPECT_EQ(witness.use_count(), 1) << "a dropped task is destroyed, and with it what it holds";
}

// Like a service, it owns the queue, and a task may hold the last reference to it.
struct Owner {
    SerialQueue queue{"owner"};
};

TEST(SerialQueue, CanBeDestroyedByItsOwnTask) {
    auto owner = std::make_shared<Owner>();
    SerialQueue& queue = owner->queue;
    const auto witness = std::make_shared<int>();
    std::promise<void> released;
    std::promise<void> destroyed;
    std::atomic<bool> ranLater = false;
    queue.post([&, held = owner]() mutable {
        released.get_future().wait();
        held.reset();
        destroyed.set_value();
    });
    queue.post([&ranLater, witness] { ranLater = true; });
    owner.reset();
    released.set_value();
    destroyed.get_future().wait();

    // Only when the thread has ended and dropped its queued tasks is it certain that none of them
    // runs.
    while (witness.use_count() > 1)
        std::this_thread::yield();
    EXPECT_FALSE(ranLater);
}

TEST(SerialQueue, CanBeDestroyedWithTheTaskThatHoldsIt) {
    auto owner = std::make_shared<Owner>();
    SerialQueue& queue = owner->queue;
    const std::weak_ptr<Owner> watched = owner;
    std::promise<void> released;
    queue.post([&released, held = std::move(owner)] { released.get_future().wait(); });
    released.set_value();
    while (!watched.expired())
        std::this_thread::yield();
}

} // namespace
} // namespace brevane::test
