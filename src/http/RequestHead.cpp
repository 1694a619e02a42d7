// SPDX-License-Identifier: MIT
#include "RequestHead.h"

#include "AsciiCase.h"
#include "Text.h"

#include <boost/url/pct_string_view.hpp>

#include <algorithm>

namespace brevane {

namespace {

constexpr std::string_view endOfLine = "\r\n";
constexpr std::string_view blankLine = "\r\n\r\n";

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text,
                               [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

// Field names are case-insensitive (RFC 9110, section 5.1).
bool isField(std::string_view line, std::string_view name) {
    return line.size() > name.size() && line[name.size()] == ':' &&
           equalsIgnoringCase(line.substr(0, name.size()), name);
}

// Whether the head announces a body (RFC 9112, section 6). It must end with the CRLF of its last
// line.
bool announcesBody(std::string_view head) {
    for (auto end = head.find(endOfLine); end != head.npos; end = head.find(endOfLine)) {
        head.remove_prefix(end + endOfLine.size());
        if (isField(head, "content-length") || isField(head, "transfer-encoding")) return true;
    }
    return false;
}

std::string percentDecoded(std::string_view target) {
    if (!target.contains('%')) return std::string(target);
    const auto escaped = boost::urls::make_pct_string_view(target);
    if (escaped.has_error()) return std::string(target);
    const std::string decoded = escaped->decode();
    return isUtf8(decoded) ? decoded : std::string(target);
}

} // namespace

std::optional<std::expected<RequestHead, Status>> parseRequestHead(std::string_view received,
                                                                   std::size_t searched) {
    // The blank line may begin in the last three bytes searched.
    const std::size_t end =
        received.find(blankLine, searched - std::min(searched, blankLine.size() - 1));
    if (end == received.npos) return std::nullopt;

    std::string converted;
    std::string_view line = received.substr(0, received.find(endOfLine));
    if (!isAscii(line) && !isUtf8(received)) line = converted = utf8FromLatin1(line);

    const std::size_t methodEnd = line.find(' ');
    if (methodEnd == line.npos) return std::unexpected(Status::badRequest);
    const std::string_view method = line.substr(0, methodEnd);
    if (method != "GET" && method != "HEAD") return std::unexpected(Status::methodNotAllowed);

    std::string_view target = line.substr(methodEnd + 1);
    target = target.substr(0, target.find(' '));
    target = target.substr(0, target.find('?'));

    const std::size_t length = end + blankLine.size();
    const std::string_view head = received.substr(0, end + endOfLine.size());
    return RequestHead{.headOnly = method == "HEAD",
                       .path = percentDecoded(target),
                       .moreFollows = received.size() > length || announcesBody(head)};
}

} // namespace brevane
