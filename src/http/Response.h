// SPDX-License-Identifier: MIT
#pragma once

#include "LargeFile.h"

#include <string>
#include <string_view>
#include <variant>

namespace brevane {

/// A whole response (RFC 9112, section 4): head, and body unless a HEAD is answered.
struct Response {
    std::string head;
    /// A text, the bytes of a small file in the thread's buffer, or a large file.
    std::variant<std::string, std::string_view, LargeFile> body;

    /// The large file that is to be loaded before the response can be sent, if there is one.
    [[nodiscard]] LargeFile* fileToLoad();
    [[nodiscard]] std::string_view bodyBytes() const;
    /// Copies what lies in the thread's buffer, since another response will use it.
    void keep();
};

/// 200 for the regular file at `path`, 403 where it cannot be read. `path` decides the media type.
/// The file is closed again, or belongs to the response.
[[nodiscard]] Response fileResponse(const std::string& path, bool headOnly);

/// 200 with a generated page of what is in `folder`.
[[nodiscard]] Response listingResponse(const std::string& folder, std::string_view urlPath,
                                       bool headOnly);

/// 301 to the location as it stands, or 400 where it would not stay on its line of the head
/// or would lead to another host.
[[nodiscard]] Response redirectResponse(std::string_view location);

/// The status code with a line of text that says it, also in answer to HEAD.
[[nodiscard]] Response errorResponse(int status);

} // namespace brevane
