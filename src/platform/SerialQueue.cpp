// SPDX-License-Identifier: MIT
#include "SerialQueue.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <pthread.h>
#ifdef __APPLE__
#include <pthread/qos.h>
#endif

#include <thread>
#include <utility>

namespace brevane {

namespace {

void nameThisThread(const std::string& label) {
#ifdef __APPLE__
    pthread_setname_np(label.c_str());
    // The user is waiting for these tasks.
    pthread_set_qos_class_self_np(QOS_CLASS_USER_INITIATED, 0);
#else
    pthread_setname_np(pthread_self(), label.substr(0, 15).c_str());
#endif
}

} // namespace

// Shared with the thread, so that it survives if one of the tasks destroys the queue.
struct SerialQueue::Worker {
    boost::asio::io_context context{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> idle{
        context.get_executor()};
    std::thread thread;
};

SerialQueue::SerialQueue(const std::string& label) : worker_(std::make_shared<Worker>()) {
    worker_->thread = std::thread([held = worker_, label] {
        nameThisThread(label);
        held->context.run();
    });
}

SerialQueue::~SerialQueue() {
    worker_->context.stop();
    if (worker_->thread.get_id() == std::this_thread::get_id()) {
        worker_->thread.detach();
    } else {
        worker_->thread.join();
    }
}

void SerialQueue::post(std::function<void()> task) {
    boost::asio::post(worker_->context, std::move(task));
}

} // namespace brevane
