// SPDX-License-Identifier: MIT
#include "RequestHead.h"
#include "FuzzTarget.h"
#include "Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view received(reinterpret_cast<const char*>(data), size);
    const auto head = brevane::parseRequestHead(received);
    require(head.has_value() == received.contains("\r\n\r\n"));
    // Bytes known to contain no blank line need not be searched again.
    const std::size_t end = std::min(received.find("\r\n\r\n"), size);
    require(brevane::parseRequestHead(received, std::min(end + 3, size)) == head);
    if (!head) return 0;
    if (*head)
        require(brevane::isUtf8((*head)->path) || !(*head)->path.contains('%'));
    else
        require(head->error() == brevane::Status::badRequest ||
                head->error() == brevane::Status::methodNotAllowed);
    return 0;
}
