// SPDX-License-Identifier: MIT
// http-many DIR COUNT: runs COUNT file servers for one folder in one process. Prints their ports,
// one per line, and runs until standard input closes.
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
