// SPDX-License-Identifier: MIT
#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <atomic>
#include <thread>
#include <utility>
#include <vector>

namespace brevane {

/// The executor of all connections. Its concrete type: hiding it behind any_io_executor costs up to
/// a fifth of a small request.
using Executor = boost::asio::io_context::executor_type;

/// What a server pool is made of: handlers, which serve connections and never wait, and loaders,
/// which may wait for the disk to bring a large file. As many of each as there are processors.
class ServerThreads {
public:
    /// Throws std::system_error or boost::system::system_error where there is no thread or
    /// descriptor left.
    ServerThreads();
    ~ServerThreads();
    ServerThreads(const ServerThreads&) = delete;
    ServerThreads& operator=(const ServerThreads&) = delete;

    [[nodiscard]] Executor handlers() { return context.get_executor(); }

    /// Runs `task` on a loader.
    template <class Task>
    void load(Task task) {
        boost::asio::post(loading, std::move(task));
    }

    /// Set when the pool ends: a loader gives up then.
    [[nodiscard]] const std::atomic<bool>& isEnding() const { return ending; }

private:
    explicit ServerThreads(unsigned count);

    std::atomic<bool> ending = false;
    boost::asio::io_context context;
    boost::asio::io_context loading; // its tasks post to the other one, so it is destroyed first
    boost::asio::executor_work_guard<Executor> work;
    boost::asio::executor_work_guard<Executor> loadingWork;
    std::vector<std::thread> threads;
};

} // namespace brevane
