// SPDX-License-Identifier: MIT
#include "ServerThreads.h"

#include "Loaders.h"

#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <new>
#include <thread>
#include <utility>
#include <vector>

#ifdef __linux__
#include <sched.h>
#endif

namespace brevane {

namespace {

using Clock = std::chrono::steady_clock;

// Time between two checks by the watch. A visit that lasts from one to the next hangs.
constexpr auto watchTime = std::chrono::milliseconds(50);
// Checks without a visit before the watch sleeps.
constexpr int quietLooks = 20;
// How long end() waits for threads to end.
constexpr auto endTime = std::chrono::milliseconds(500);

// Ends the thread that it is thrown on.
struct SurplusThread {};

// sendfile raises SIGPIPE if the client has gone, and has no flag against that.
void blockSigpipe() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

// The processors that this process may run on; more threads would only compete.
unsigned processors() {
#ifdef __linux__
    cpu_set_t allowed;
    if (sched_getaffinity(0, sizeof allowed, &allowed) == 0)
        return static_cast<unsigned>(CPU_COUNT(&allowed));
#endif
    return std::max(1U, std::thread::hardware_concurrency());
}

} // namespace

thread_local ServerThreads::Seat* ServerThreads::ownSeat = nullptr;

ServerThreads::Visit::Visit(ServerThreads& threads, const Loaders& folder) : seat_(ownSeat) {
    if (seat_ == nullptr) return;
    seat_->folder.store(&folder, std::memory_order_relaxed);
    ++seat_->visits;
    if (!threads.watching_) threads.beginWatch();
}

ServerThreads::Visit::~Visit() {
    if (seat_ == nullptr) return;
    seat_->visits.fetch_add(1, std::memory_order_release);
    if (!seat_->replaced.exchange(false)) return;
    // This thread was replaced, so there is one too many. Any of them may end.
    boost::asio::post(seat_->context, [] { throw SurplusThread(); });
}

std::shared_ptr<ServerThreads> ServerThreads::start() {
    const unsigned count = processors();
    std::shared_ptr<ServerThreads> threads(new ServerThreads(count));
    threads->startAll(count);
    return threads;
}

ServerThreads::ServerThreads(unsigned count)
    : handlers_(static_cast<int>(count)), senders_(static_cast<int>(count)),
      handlerWork_(handlers_.get_executor()), senderWork_(senders_.get_executor()) {}

void ServerThreads::startAll(unsigned count) {
    // Makes the event loops open their descriptors now; when the first connection comes, none may
    // be left.
    using Socket = boost::asio::basic_stream_socket<boost::asio::ip::tcp, Executor>;
    const Socket firstHandled(handlers_);
    const Socket firstSent(senders_);
    bool started = launch([this] { watch(); });
    for (; count > 0 && started; --count)
        started = startThread(handlers_) && startThread(senders_);
    if (started) return;
    end();
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
}

bool ServerThreads::launch(std::function<void()> work) {
    {
        const MutexLock lock(mutex_);
        if (ending_) return false;
        ++running_;
    }
    const auto ended = [this] {
        const MutexLock lock(mutex_);
        --running_;
        ended_.notifyAll();
    };
    try {
        // Detached, since it may hang; it shares ownership of everything it uses.
        std::thread([held = shared_from_this(), work = std::move(work), ended] {
            blockSigpipe();
            work();
            ended();
        }).detach();
        return true;
    } catch (const std::system_error&) {
        ended();
        return false;
    }
}

bool ServerThreads::startThread(boost::asio::io_context& context) {
    Seat* seat = nullptr;
    {
        const MutexLock lock(mutex_);
        seat = &seats_.emplace_back(context);
    }
    if (launch([this, seat] { run(*seat); })) return true;
    const MutexLock lock(mutex_);
    seats_.remove_if([seat](const Seat& one) { return &one == seat; });
    return false;
}

void ServerThreads::run(Seat& seat) {
    ownSeat = &seat;
    for (bool surplus = false; !surplus && !ending_;) {
        try {
            seat.context.run();
        } catch (const std::bad_alloc&) {
            // The connection that ran out of memory was closed; the others are still served.
        } catch (const SurplusThread&) {
            surplus = true;
        }
    }
    const MutexLock lock(mutex_);
    seats_.remove_if([&seat](const Seat& one) { return &one == &seat; });
}

void ServerThreads::beginWatch() {
    const MutexLock lock(mutex_);
    if (!watching_.exchange(true)) wanted_.notifyAll();
}

void ServerThreads::watch() {
    int quiet = 0;
    while (!ending_) {
        std::vector<boost::asio::io_context*> hanging;
        {
            const MutexLock lock(mutex_);
            if (quiet == quietLooks) {
                quiet = 0;
                watching_ = false;
                // lookAround() sees a visit that began before this; a later one wakes the watch.
                if (!lookAround(hanging))
                    while (!watching_ && !ending_)
                        wanted_.wait(mutex_);
                watching_ = true;
            }
            const auto next = Clock::now() + watchTime;
            for (auto now = Clock::now(); now < next && !ending_; now = Clock::now())
                wanted_.waitFor(mutex_, next - now);
            quiet = lookAround(hanging) ? 0 : quiet + 1;
        }
        for (boost::asio::io_context* const context : hanging)
            if (!startThread(*context)) break; // The other threads go on without it.
    }
}

bool ServerThreads::lookAround(std::vector<boost::asio::io_context*>& hanging) {
    bool visited = false;
    for (Seat& seat : seats_) {
        const std::uint64_t visits = seat.visits;
        const bool inside = visits % 2 != 0;
        visited = visited || inside || visits != seat.visitsSeen;
        if (inside && visits == seat.visitsSeen && !seat.replaced.exchange(true)) {
            const auto found = loaders_.find(seat.folder);
            const auto folder = found == loaders_.end() ? nullptr : found->second.lock();
            if (folder) folder->markSlow();
            hanging.push_back(&seat.context);
        }
        seat.visitsSeen = visits;
    }
    return visited;
}

std::shared_ptr<Loaders> ServerThreads::makeLoaders() {
    auto made = std::make_shared<Loaders>(*this);
    const MutexLock lock(mutex_);
    std::erase_if(loaders_, [](const auto& one) { return one.second.expired(); });
    loaders_[made.get()] = made;
    return made;
}

void ServerThreads::end() {
    {
        const MutexLock lock(mutex_);
        ending_ = true;
        wanted_.notifyAll();
        for (const auto& [address, loaders] : loaders_)
            if (const auto ended = loaders.lock()) ended->end();
        handlers_.stop();
        senders_.stop();
        const auto limit = Clock::now() + endTime;
        for (auto now = Clock::now(); running_ > 0 && now < limit; now = Clock::now())
            ended_.waitFor(mutex_, limit - now);
    }
    connections_.closeAll();
}

} // namespace brevane
