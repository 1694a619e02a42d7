// SPDX-License-Identifier: MIT
#pragma once

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace brevane::test {

/// The complete response of a local server to `request`, read until the server closes; empty if
/// nothing listens on the port.
inline std::string answerTo(std::int64_t port, std::string_view request) {
    using boost::asio::ip::tcp;
    boost::asio::io_context context;
    tcp::socket socket(context);
    boost::system::error_code error;
    const tcp::endpoint server(boost::asio::ip::address_v4::loopback(),
                               static_cast<std::uint16_t>(port));
    socket.connect(server, error);
    if (error) return {};
    boost::asio::write(socket, boost::asio::buffer(request), error);
    std::string answer;
    boost::asio::read(socket, boost::asio::dynamic_buffer(answer), error);
    return answer;
}

/// The body of the response to a GET of `target`.
inline std::string fetch(std::int64_t port, const std::string& target) {
    const std::string answer = answerTo(port, "GET " + target + " HTTP/1.1\r\n\r\n");
    const auto end = answer.find("\r\n\r\n");
    return end == std::string::npos ? "" : answer.substr(end + 4);
}

} // namespace brevane::test
