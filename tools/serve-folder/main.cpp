// SPDX-License-Identifier: MIT
// serve-folder DIR PORT: Brevane's file server for one folder, without the rest of Brevane.
#include "FileHTTPServer.h"

#include <sys/select.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace {

constexpr const char* usage =
    "Usage: serve-folder DIR PORT\n"
    "\n"
    "Serves the folder DIR over HTTP on PORT of every local address; PORT 0 takes\n"
    "a free one. The first line on standard output is the port. Runs until SIGTERM\n"
    "or the end of standard input.\n";

std::optional<std::uint16_t> portFrom(std::string_view text) {
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return port;
}

// Blocks SIGTERM for all threads; only pselect() unblocks it, while waiting. Returns the mask for
// that.
sigset_t blockSigterm() {
    struct sigaction noted {};
    noted.sa_handler = [](int) {};
    ::sigaction(SIGTERM, &noted, nullptr);

    sigset_t sigterm;
    sigset_t before;
    sigemptyset(&sigterm);
    sigaddset(&sigterm, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &sigterm, &before);
    return before;
}

void waitForEnd(const sigset_t& whileWaiting) {
    std::array<char, 4096> ignored{};
    for (;;) {
        fd_set input;
        FD_ZERO(&input);
        FD_SET(STDIN_FILENO, &input);
        if (::pselect(STDIN_FILENO + 1, &input, nullptr, nullptr, nullptr, &whileWaiting) < 0)
            return;
        if (::read(STDIN_FILENO, ignored.data(), ignored.size()) <= 0) return;
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::string_view(argv[1]) == "--help") {
        std::fputs(usage, stdout);
        return EXIT_SUCCESS;
    }
    const auto requested = argc == 3 ? portFrom(argv[2]) : std::nullopt;
    if (!requested) {
        std::fputs(usage, stderr);
        return 2;
    }

    const sigset_t whileWaiting = blockSigterm();
    brevane::ServerPool pool;
    brevane::FileHTTPServer server(argv[1], pool);
    const auto port = server.startListener(*requested);
    if (!port) {
        std::fprintf(stderr, "serve-folder: port %s: %s\n", argv[2],
                     port.error().message().c_str());
        return EXIT_FAILURE;
    }
    std::printf("%lld\n", static_cast<long long>(*port));
    std::fflush(stdout);
    waitForEnd(whileWaiting);
    return EXIT_SUCCESS;
}
