// SPDX-License-Identifier: MIT
// http-many DIR COUNT: COUNT file servers of one folder in one process; prints their ports, one a
// line, and runs until standard input ends.
#include "FileHTTPServer.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    brevane::ServerPool pool;
    std::vector<std::unique_ptr<brevane::FileHTTPServer>> servers;
    for (int count = std::atoi(argv[2]); count > 0; --count) {
        servers.push_back(std::make_unique<brevane::FileHTTPServer>(argv[1], pool));
        const auto port = servers.back()->startListener(0);
        if (!port) return 1;
        std::printf("%lld\n", static_cast<long long>(*port));
    }
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
}
