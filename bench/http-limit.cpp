// SPDX-License-Identifier: MIT
// http-limit DIR PORT: the minimum cost of a request for a file, as a lower limit for comparison:
// accept, receive, open, fstat, read, send and close in one loop on one thread. It checks nothing,
// makes no listings and replies only 200 and 404. Not for actual use.
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t bufferSize = 256 * 1024;

int listenOn(std::uint16_t port) {
    const int listening = ::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    ::setsockopt(listening, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(port);
    if (::bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listening, 4096) != 0) {
        std::perror("http-limit");
        std::exit(1);
    }
    return listening;
}

void send(int connection, std::string_view head, std::string_view body) {
    std::array<iovec, 2> parts{{{const_cast<char*>(head.data()), head.size()},
                                {const_cast<char*>(body.data()), body.size()}}};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = parts.size();
    if (::sendmsg(connection, &message, MSG_NOSIGNAL | MSG_MORE) < 0) std::perror("sendmsg");
}

void answer(int connection, const std::string& path, char* buffer) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat found {};
    if (file < 0 || ::fstat(file, &found) != 0) {
        send(connection,
             "HTTP/1.1 404 Not Found\r\nContent-Type: text/plain\r\nContent-Length: 13\r\n"
             "Connection: close\r\n\r\n",
             "404 Not Found");
        return;
    }
    std::size_t left = static_cast<std::size_t>(found.st_size);
    std::string head =
        "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: " + std::to_string(left) +
        "\r\nConnection: close\r\n\r\n";
    do {
        const auto count = ::read(file, buffer, bufferSize);
        if (count <= 0) break;
        send(connection, head, {buffer, static_cast<std::size_t>(count)});
        head.clear();
        left -= static_cast<std::size_t>(count);
    } while (left > 0);
    ::close(file);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string root = argv[1];
    const int listening = listenOn(static_cast<std::uint16_t>(std::atoi(argv[2])));
    const std::unique_ptr<char, decltype(&std::free)> buffer(
        static_cast<char*>(std::aligned_alloc(4096, bufferSize)), &std::free);
    for (;;) {
        const int connection = ::accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
        const auto count = ::recv(connection, buffer.get(), bufferSize, 0);
        if (count > 0) {
            const std::string_view request(buffer.get(), static_cast<std::size_t>(count));
            const std::size_t begin = request.find(' ') + 1;
            answer(connection,
                   root + std::string(request.substr(begin, request.find(' ', begin) - begin)),
                   buffer.get());
        }
        ::close(connection);
    }
}
