// SPDX-License-Identifier: MIT
#include "UrlPort.h"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include <charconv>

namespace brevane {

std::optional<std::int64_t> explicitPort(std::string_view url) {
    const auto parsed = boost::urls::parse_uri_reference({url.data(), url.size()});
    if (!parsed || !parsed->has_port()) return {};

    // Boost.URL 1.81 ends the port at its last digit and parses the rest as a path, but a path
    // after an authority must start with a slash (RFC 3986, section 3.3).
    const auto path = parsed->encoded_path();
    if (!path.empty() && path.front() != '/') return {};

    const auto digits = parsed->port();
    std::int64_t port = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    if (error != std::errc{}) return {};
    return port;
}

} // namespace brevane
