// SPDX-License-Identifier: MIT
#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>

#include <atomic>
#include <thread>
#include <utility>
#include <vector>

namespace brevane {

/// The executor of all connections. Its concrete type: hiding it behind any_io_executor costs up to
/// a fifth of a small request.
using Executor = boost::asio::io_context::executor_type;

/// What a server pool is made of: handlers, which serve connections and never wait, and loaders,
/// which may wait for the disk to bring a large file.
class ServerThreads {
public:
    ServerThreads();
    ~ServerThreads();
    ServerThreads(const ServerThreads&) = delete;
    ServerThreads& operator=(const ServerThreads&) = delete;

    [[nodiscard]] Executor handlers() { return context.get_executor(); }

    /// Runs `task` on a loader.
    template <class Task>
    void load(Task task) {
        boost::asio::post(loaders, std::move(task));
    }

    /// Set when the pool ends: a loader gives up then.
    [[nodiscard]] const std::atomic<bool>& isEnding() const { return ending; }

private:
    void run();

    std::atomic<bool> ending = false;
    boost::asio::io_context context;
    boost::asio::executor_work_guard<Executor> work;
    boost::asio::thread_pool loaders; // its tasks post to the context, so it is destroyed first
    std::vector<std::thread> threads;
};

} // namespace brevane
