// SPDX-License-Identifier: MIT
#pragma once

#include "LargeFile.h"
#include "RequestHead.h"
#include "Status.h"

#include <memory>
#include <string>
#include <string_view>

namespace brevane {

/// A whole response (RFC 9112, section 4) as the thread has it that made it. Its body may lie in a
/// buffer of that thread, which the next response overwrites; it therefore stays where it was made,
/// and what outlives the handler is a copy of what has not been sent.
class Response {
public:
    /// A head and a body, which is the response's own or the thread's.
    Response(std::string head, std::string body) : head_(std::move(head)), own_(std::move(body)) {}
    Response(std::string head, std::string_view lent) : head_(std::move(head)), lent_(lent) {}
    /// A head, which stands before the file, one of up to `smallFileSize` in the kernel's cache; or
    /// before nothing, but is only to be sent once the file could be read.
    Response(std::string head, LargeFile file, bool headOnly)
        : head_(std::move(head)), file_(std::make_unique<LargeFile>(std::move(file))),
          headOnly_(headOnly) {}
    Response(const Response&) = delete;
    Response& operator=(const Response&) = delete;

    [[nodiscard]] std::string_view head() const { return head_; }
    /// None where a file goes with the head.
    [[nodiscard]] std::string_view body() const { return own_.empty() ? lent_ : own_; }

    /// The file that goes with the head; none where there is no such file.
    [[nodiscard]] std::unique_ptr<LargeFile> takeFile() { return std::move(file_); }
    /// Whether the file is not to be sent.
    [[nodiscard]] bool headOnly() const { return headOnly_; }

    /// What follows the first `sent` bytes of head and body.
    [[nodiscard]] std::string rest(std::size_t sent) const;

private:
    std::string head_;
    std::string own_;
    std::string_view lent_;
    std::unique_ptr<LargeFile> file_;
    bool headOnly_ = false;
};

/// The answer to a request for something below `root`, a standardized path. Looks at the disk.
[[nodiscard]] Response respond(const RequestHead& request, const std::string& root);

/// The refusal of a request, with a line of text that says it, also in answer to HEAD.
[[nodiscard]] Response errorResponse(Status status);

/// 200 for the regular file at `path`, 403 where it cannot be read. `path` decides the media type.
[[nodiscard]] Response fileResponse(const std::string& path, bool headOnly);

} // namespace brevane
