// SPDX-License-Identifier: MIT
// http-client [-a] [-c CLIENTS] [-d SECONDS] [-n REQUESTS] [-r RATE] [-l SECONDS] [-s STATUS] PORT
// PATH
//
// Requests PATH from a server on 127.0.0.1 repeatedly, each time on a new connection, and prints
// one JSON object with the results. Keeps CLIENTS requests running; with -r, starts RATE requests
// per second, up to CLIENTS at once, and counts a late one's latency from when it was due. With -l,
// sends each request that long after connecting. A response without STATUS or of another length
// than it announces is an error, and so is one that is incomplete 5 seconds after the end; with -a,
// the client disconnects at the end instead, and counts the bytes received so far.
#include "HttpExchange.h"

#include <sys/epoll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <string>
#include <vector>

namespace {

using brevane::bench::HttpExchange;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

struct Options {
    std::size_t clients = 16;
    Seconds duration{1};
    std::size_t requests = SIZE_MAX;
    double rate = 0;
    Seconds late{0};
    bool abandon = false;
    int status = 200;
    std::uint16_t port = 0;
    std::string path;
};

Options parse(int argc, char** argv) {
    Options options;
    for (int option = 0; (option = ::getopt(argc, argv, "ac:d:n:r:l:s:")) != -1;) {
        switch (option) {
        case 'a':
            options.abandon = true;
            break;
        case 'c':
            options.clients = std::strtoul(optarg, nullptr, 10);
            break;
        case 'd':
            options.duration = Seconds(std::strtod(optarg, nullptr));
            break;
        case 'n':
            options.requests = std::strtoul(optarg, nullptr, 10);
            break;
        case 'r':
            options.rate = std::strtod(optarg, nullptr);
            break;
        case 'l':
            options.late = Seconds(std::strtod(optarg, nullptr));
            break;
        case 's':
            options.status = std::atoi(optarg);
            break;
        default:
            std::exit(2);
        }
    }
    if (argc - optind != 2) std::exit(2);
    options.port = static_cast<std::uint16_t>(std::atoi(argv[optind]));
    options.path = argv[optind + 1];
    return options;
}

Clock::duration asDuration(Seconds seconds) {
    return std::chrono::duration_cast<Clock::duration>(seconds);
}

class LoadClient {
public:
    explicit LoadClient(Options options)
        : options_(std::move(options)), poll_(::epoll_create1(EPOLL_CLOEXEC)) {
        for (std::size_t index = 0; index < options_.clients; ++index) {
            exchanges_.emplace_back(poll_, index, options_.port, options_.path);
            idle_.push_back(index);
        }
    }

    void run() {
        begun_ = Clock::now();
        const auto end = begun_ + asDuration(options_.duration);
        for (;;) {
            const auto now = Clock::now();
            const bool open = now < end && started_ < options_.requests;
            if (open)
                start(now);
            else if (idle_.size() == exchanges_.size() || options_.abandon ||
                     now > end + std::chrono::seconds(5))
                break;
            sendDue(now);
            step(untilDue(open, now));
        }
        elapsed_ = Clock::now() - begun_;
        for (const HttpExchange& exchange : exchanges_) {
            if (!exchange.isUnderWay()) continue;
            if (options_.abandon)
                bytes_ += exchange.received();
            else
                ++errors_;
        }
    }

    void report() {
        std::printf("{\"done\": %zu, \"errors\": %zu, \"bytes\": %zu, \"seconds\": %.6f, "
                    "\"p50\": %.1f, \"p99\": %.1f, \"first\": %.1f, \"cpu\": %.6f}\n",
                    latencies_.size(), errors_, bytes_, elapsed_.count(),
                    percentile(latencies_, 0.5), percentile(latencies_, 0.99),
                    percentile(firstBytes_, 0.5), processorTime());
    }

private:
    struct Connected {
        Clock::time_point due;
        std::size_t index;
    };

    [[nodiscard]] Clock::time_point nextDue() const {
        return begun_ + asDuration(Seconds(double(started_) / options_.rate));
    }

    void start(Clock::time_point now) {
        while (!idle_.empty() && started_ < options_.requests) {
            auto due = now;
            if (options_.rate > 0 && (due = nextDue()) > now) return;
            const std::size_t index = idle_.back();
            idle_.pop_back();
            ++started_;
            exchanges_[index].connect(due);
            connected_.push_back({now + asDuration(options_.late), index});
        }
    }

    void sendDue(Clock::time_point now) {
        while (!connected_.empty() && connected_.front().due <= now) {
            exchanges_[connected_.front().index].request();
            connected_.pop_front();
        }
    }

    // How long nothing has to be started or sent, at most 100 ms. Half a millisecond less, which is
    // spent polling, since waking up takes time; the rest leaves the processor to others.
    [[nodiscard]] timespec untilDue(bool open, Clock::time_point now) const {
        auto due = now + std::chrono::milliseconds(100);
        if (open && options_.rate > 0 && !idle_.empty()) due = std::min(due, nextDue());
        if (!connected_.empty()) due = std::min(due, connected_.front().due);
        const auto left = std::max<std::chrono::nanoseconds>(
            due - now - std::chrono::microseconds(500), std::chrono::nanoseconds(0));
        return {0, static_cast<long>(left.count())};
    }

    void step(timespec wait) {
        std::array<epoll_event, 256> events{};
        const int count = ::epoll_pwait2(poll_, events.data(), int(events.size()), &wait, nullptr);
        for (int event = 0; event < count; ++event) {
            const std::size_t index = events[static_cast<std::size_t>(event)].data.u64;
            HttpExchange& exchange = exchanges_[index];
            if (!exchange.advance()) continue;
            if (exchange.isWhole() && exchange.status() == options_.status) {
                latencies_.push_back(Clock::now() - exchange.due());
                firstBytes_.push_back(exchange.firstByte() - exchange.due());
                bytes_ += exchange.received();
            } else {
                ++errors_;
            }
            idle_.push_back(index);
        }
    }

    // In microseconds. Sorts `times`.
    static double percentile(std::vector<Seconds>& times, double part) {
        if (times.empty()) return 0;
        std::ranges::sort(times);
        const auto index = static_cast<std::size_t>(part * double(times.size()));
        return times[std::min(index, times.size() - 1)].count() * 1e6;
    }

    static double processorTime() {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        const auto seconds = [](const timeval& time) {
            return double(time.tv_sec) + double(time.tv_usec) / 1e6;
        };
        return seconds(usage.ru_utime) + seconds(usage.ru_stime);
    }

    Options options_;
    int poll_;
    std::vector<HttpExchange> exchanges_;
    std::vector<std::size_t> idle_;
    std::deque<Connected> connected_;
    std::size_t started_ = 0;
    std::size_t errors_ = 0;
    std::size_t bytes_ = 0;
    std::vector<Seconds> latencies_;
    std::vector<Seconds> firstBytes_;
    Clock::time_point begun_;
    Seconds elapsed_{0};
};

} // namespace

int main(int argc, char** argv) {
    LoadClient client(parse(argc, argv));
    client.run();
    client.report();
}
