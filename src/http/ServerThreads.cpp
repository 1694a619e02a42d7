// SPDX-License-Identifier: MIT
#include "ServerThreads.h"

#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <algorithm>
#include <new>

#ifdef __linux__
#include <sched.h>
#endif

namespace brevane {

namespace {

// Processors that this process may run on; more threads than these only compete.
unsigned processors() {
#ifdef __linux__
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) == 0)
        return static_cast<unsigned>(CPU_COUNT(&allowed));
#endif
    return std::max(1U, std::thread::hardware_concurrency());
}

void run(boost::asio::io_context& context) {
    for (;;) {
        try {
            context.run();
            return;
        } catch (const std::bad_alloc&) {
            // The connection that asked for too much memory was closed; the others are served on.
        }
    }
}

} // namespace

ServerThreads::ServerThreads(unsigned count)
    : context(static_cast<int>(count)), loading(static_cast<int>(count)),
      work(context.get_executor()), loadingWork(loading.get_executor()) {}

// Where it throws, the destructor joins what has been started.
ServerThreads::ServerThreads() : ServerThreads(processors()) {
    // The event loop takes its descriptors now; when the first connection comes, none may be left.
    const boost::asio::basic_stream_socket<boost::asio::ip::tcp, Executor> first(context);
    for (unsigned count = processors(); count > 0; --count) {
        threads.emplace_back([this] { run(context); });
        threads.emplace_back([this] { run(loading); });
    }
}

ServerThreads::~ServerThreads() {
    ending = true;
    context.stop();
    loading.stop();
    for (std::thread& thread : threads)
        thread.join();
}

} // namespace brevane
