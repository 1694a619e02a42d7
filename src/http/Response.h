// SPDX-License-Identifier: MIT
#pragma once

#include "LargeFile.h"
#include "RequestHead.h"
#include "Status.h"

#include <memory>
#include <string>
#include <string_view>

namespace brevane {

/// A whole response (RFC 9112, section 4). Its body may be in a buffer of the thread that made it,
/// which the next response overwrites. So a Response is not copied or moved, and what must outlive
/// the handler is a copy of what has not been sent.
class Response {
public:
    /// A head and a body, which is owned, or lent from the thread's buffer.
    Response(std::string head, std::string body) : head_(std::move(head)), own_(std::move(body)) {}
    Response(std::string head, std::string_view lent) : head_(std::move(head)), lent_(lent) {}
    /// A head and the file to send after it; with `headOnly` the file is loaded, but not sent. A
    /// file of up to `smallFileSize` must be in the page cache.
    Response(std::string head, LargeFile file, bool headOnly)
        : head_(std::move(head)), file_(std::make_unique<LargeFile>(std::move(file))),
          headOnly_(headOnly) {}
    Response(const Response&) = delete;
    Response& operator=(const Response&) = delete;

    [[nodiscard]] std::string_view head() const { return head_; }
    /// Empty if there is a file.
    [[nodiscard]] std::string_view body() const { return own_.empty() ? lent_ : own_; }

    /// Passes on ownership of the file to send after the head; null if there is none.
    [[nodiscard]] std::unique_ptr<LargeFile> takeFile() { return std::move(file_); }
    /// Whether the file must not be sent.
    [[nodiscard]] bool headOnly() const { return headOnly_; }

    /// A copy of head and body without their first `sent` bytes.
    [[nodiscard]] std::string rest(std::size_t sent) const;

private:
    std::string head_;
    std::string own_;
    std::string_view lent_;
    std::unique_ptr<LargeFile> file_;
    bool headOnly_ = false;
};

/// Answers a request for a path below `root`, a standardized path. Blocks on the disk.
[[nodiscard]] Response respond(const RequestHead& request, const std::string& root);

/// An error response whose body is the status as a line of text, also in answer to HEAD.
[[nodiscard]] Response errorResponse(Status status);

/// 200 with the regular file at `path`, 403 if it cannot be read. The extension of `path`
/// determines the media type.
[[nodiscard]] Response fileResponse(const std::string& path, bool headOnly);

} // namespace brevane
