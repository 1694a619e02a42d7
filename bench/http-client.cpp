// SPDX-License-Identifier: MIT
// http-client [-c CLIENTS] [-d SECONDS] [-n REQUESTS] [-r RATE] [-s STATUS] PORT PATH
//
// Asks a server on 127.0.0.1 for PATH over and over, on a new connection each time, and prints one
// JSON object about it. CLIENTS requests are under way at any time; with -r, RATE requests begin
// every second, as far as CLIENTS allows, and a late one's latency counts from when it was due.
// A response that does not have STATUS or the length that it says is an error.
#include "HttpExchange.h"

#include <sys/epoll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
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
    int status = 200;
    std::uint16_t port = 0;
    std::string path;
};

Options parse(int argc, char** argv) {
    Options options;
    for (int option = 0; (option = ::getopt(argc, argv, "c:d:n:r:s:")) != -1;) {
        switch (option) {
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

class LoadClient {
public:
    explicit LoadClient(Options asked)
        : options(std::move(asked)), poll(::epoll_create1(EPOLL_CLOEXEC)) {
        for (std::size_t index = 0; index < options.clients; ++index) {
            exchanges.emplace_back(poll, index, options.port, options.path);
            idle.push_back(index);
        }
    }

    void run() {
        begun = Clock::now();
        const auto end = begun + std::chrono::duration_cast<Clock::duration>(options.duration);
        for (;;) {
            const auto now = Clock::now();
            const bool open = now < end && started < options.requests;
            if (open)
                start(now);
            else if (idle.size() == exchanges.size() || now > end + std::chrono::seconds(5))
                break;
            step(open);
        }
        elapsed = Clock::now() - begun;
    }

    void report() {
        std::ranges::sort(latencies);
        const auto percentile = [this](double part) {
            if (latencies.empty()) return 0.0;
            const auto index = static_cast<std::size_t>(part * double(latencies.size()));
            return latencies[std::min(index, latencies.size() - 1)].count() * 1e6;
        };
        std::printf("{\"done\": %zu, \"errors\": %zu, \"bytes\": %zu, \"seconds\": %.6f, "
                    "\"p50\": %.1f, \"p99\": %.1f, \"cpu\": %.6f}\n",
                    latencies.size(), errors, bytes, elapsed.count(), percentile(0.5),
                    percentile(0.99), processorTime());
    }

private:
    void start(Clock::time_point now) {
        while (!idle.empty() && started < options.requests) {
            auto due = now;
            if (options.rate > 0) {
                due = begun + std::chrono::duration_cast<Clock::duration>(
                                  Seconds(double(started) / options.rate));
                if (due > now) return;
            }
            const std::size_t index = idle.back();
            idle.pop_back();
            ++started;
            exchanges[index].begin(due);
        }
    }

    void step(bool open) {
        std::array<epoll_event, 256> events{};
        // Rates are kept to the microsecond by not sleeping.
        const int timeout = options.rate > 0 && open ? 0 : 100;
        const int count = ::epoll_wait(poll, events.data(), int(events.size()), timeout);
        for (int event = 0; event < count; ++event) {
            const std::size_t index = events[static_cast<std::size_t>(event)].data.u64;
            HttpExchange& exchange = exchanges[index];
            if (!exchange.advance()) continue;
            if (exchange.isWhole() && exchange.status() == options.status) {
                latencies.push_back(Clock::now() - exchange.due());
                bytes += exchange.received();
            } else {
                ++errors;
            }
            idle.push_back(index);
        }
    }

    static double processorTime() {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        const auto seconds = [](const timeval& time) {
            return double(time.tv_sec) + double(time.tv_usec) / 1e6;
        };
        return seconds(usage.ru_utime) + seconds(usage.ru_stime);
    }

    Options options;
    int poll;
    std::vector<HttpExchange> exchanges;
    std::vector<std::size_t> idle;
    std::size_t started = 0;
    std::size_t errors = 0;
    std::size_t bytes = 0;
    std::vector<Seconds> latencies;
    Clock::time_point begun;
    Seconds elapsed{0};
};

} // namespace

int main(int argc, char** argv) {
    LoadClient client(parse(argc, argv));
    client.run();
    client.report();
}
