// SPDX-License-Identifier: MIT
#include "SilentBus.h"

#include "Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace brevane {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds longestSilence{1};

// Nobody can listen here, so connecting fails at once.
constexpr const char* nowhere = "unix:path=/dev/null";

struct Call {
    std::string_view destination;
    std::string_view path;
    std::string_view interface;
    std::string_view member;
};

constexpr Call hello{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                     "Hello"};
constexpr Call getAddress{"org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"};

void appendNumber(std::string& message, std::uint32_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        message += static_cast<char>(number >> shift & 0xff);
}

void appendField(std::string& message, char code, char type, std::string_view value) {
    message.resize((message.size() + 7) / 8 * 8);
    message += {code, 1, type, 0};
    appendNumber(message, static_cast<std::uint32_t>(value.size()));
    message.append(value) += '\0';
}

// A method call without arguments, in the D-Bus Specification's little-endian format.
std::string encode(const Call& call, std::uint32_t serial) {
    constexpr std::size_t fieldsLength = 12;
    constexpr char methodCall = 1;
    constexpr char noAutoStart = 2;
    std::string message{'l', methodCall, noAutoStart, 1};
    appendNumber(message, 0); // no body
    appendNumber(message, serial);
    appendNumber(message, 0); // overwritten below
    appendField(message, 1, 'o', call.path);
    appendField(message, 2, 's', call.interface);
    appendField(message, 3, 's', call.member);
    appendField(message, 6, 's', call.destination);
    std::string length;
    appendNumber(length, static_cast<std::uint32_t>(message.size() - fieldsLength - 4));
    message.replace(fieldsLength, length.size(), length);
    message.resize((message.size() + 7) / 8 * 8);
    return message;
}

// The socket of an address such as "unix:path=/run/user/1000/bus,guid=0123"; none if it is not a
// Unix socket.
std::optional<std::string> socketName(std::string_view address) {
    address = address.substr(0, address.find_first_of(",;"));
    for (const auto& [prefix, mark] :
         {std::pair<std::string_view, std::string_view>{"unix:path=", ""},
          {"unix:abstract=", std::string_view("\0", 1)}})
        if (address.starts_with(prefix))
            return std::string(mark).append(address.substr(prefix.size()));
    return std::nullopt;
}

// A connection that finds out whether a bus replies in time. If nobody listens, the bus is not
// silent: Qt's own attempt fails at once too.
class Conversation {
public:
    // Connects to the socket of this name and waits for the reply to a greeting; false if none
    // comes in time.
    [[nodiscard]] bool greet(const std::string& name) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (name.size() >= sizeof address.sun_path) return true;
        name.copy(address.sun_path, name.size());
        const bool isAbstract = name.starts_with('\0');
        const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() +
                                                 (isAbstract ? 0 : 1));
        if (connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), size) != 0)
            return errno != EAGAIN; // its queue is full
        std::string user;
        for (const char digit : std::to_string(geteuid()))
            user += {'3', digit}; // its ASCII code in hexadecimal
        send(std::string(1, '\0') + "AUTH EXTERNAL " + user + "\r\n");
        if (!await("\r\n")) return false;
        send("BEGIN\r\n" + encode(hello, 1));
        return receive();
    }

    // The address of the accessibility bus; none if there is none or the reply comes too late.
    [[nodiscard]] std::optional<std::string> accessibilityBus() {
        send(encode(getAddress, 2));
        const auto start = await("unix:");
        if (!start) return std::nullopt;
        return received_.substr(*start, received_.find('\0', *start) - *start);
    }

private:
    void send(const std::string& message) const {
        static_cast<void>(
            !::send(socket_.get(), message.data(), message.size(), MSG_NOSIGNAL | MSG_DONTWAIT));
    }

    // Waits for the text and returns its position in `received_`; none if it does not come in time.
    std::optional<std::size_t> await(std::string_view text) {
        while (true) {
            const std::size_t found = received_.find(text);
            if (found != std::string::npos) return found;
            if (!receive()) return std::nullopt;
        }
    }

    // Waits for more data; false if none comes in time.
    bool receive() {
        pollfd wait{.fd = socket_.get(), .events = POLLIN, .revents = 0};
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline_ - Clock::now());
        if (poll(&wait, 1, std::max(0, static_cast<int>(left.count()))) != 1) return false;
        std::array<char, 4096> bytes{};
        const ssize_t count = recv(socket_.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
        if (count > 0) received_.append(bytes.data(), static_cast<std::size_t>(count));
        return count > 0;
    }

    Descriptor socket_{::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)};
    Clock::time_point deadline_ = Clock::now() + longestSilence;
    std::string received_;
};

} // namespace

void avoidSilentBuses() {
    const char* const set = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    std::string address;
    if (set != nullptr)
        address = set;
    else if (runtime != nullptr)
        address = std::string("unix:path=") + runtime + "/bus";
    const auto session = socketName(address);
    if (!session) return;
    Conversation bus;
    if (!bus.greet(*session)) {
        setenv("DBUS_SESSION_BUS_ADDRESS", nowhere, 1);
        setenv("AT_SPI_BUS_ADDRESS", nowhere, 1);
        return;
    }
    if (std::getenv("AT_SPI_BUS_ADDRESS") != nullptr) return;
    const auto accessibility = bus.accessibilityBus();
    const auto screenReaders = accessibility ? socketName(*accessibility) : std::nullopt;
    if (screenReaders && !Conversation().greet(*screenReaders))
        setenv("AT_SPI_BUS_ADDRESS", nowhere, 1);
}

} // namespace brevane
