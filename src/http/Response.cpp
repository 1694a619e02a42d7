// SPDX-License-Identifier: MIT
#include "Response.h"

#include "FolderListing.h"
#include "MediaType.h"
#include "PathResolution.h"
#include "ThreadBuffers.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>

namespace brevane {

namespace {

constexpr std::string_view headEnd = "\r\nConnection: close\r\n\r\n";

std::string headOf(std::string_view status, std::string_view mediaType, std::size_t length) {
    std::string head;
    head.reserve(160);
    head.append("HTTP/1.1 ").append(status);
    head.append("\r\nContent-Type: ").append(mediaType);
    head.append("\r\nContent-Length: ").append(std::to_string(length)).append(headEnd);
    return head;
}

std::string_view reasonFor(Status status) {
    switch (status) {
    case Status::badRequest:
        return "Bad Request";
    case Status::forbidden:
        return "Forbidden";
    case Status::notFound:
        return "Not Found";
    case Status::methodNotAllowed:
        return "Method Not Allowed";
    }
    return "Error";
}

// Some file systems generate the content of a file as it is read, and a few such files never end.
constexpr std::size_t madeUpSizeLimit = 64 * 1024 * 1024;

// Up to this size, copying a file is no slower than sendfile.
constexpr std::size_t copiedSize = 16 * 1024;

// Reads until the buffer is full or the file ends. Returns nullopt if reading fails.
std::optional<std::size_t> readInto(std::span<char> buffer, int file) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const auto count = ::read(file, buffer.data() + filled, buffer.size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return filled;
}

// Reads a file of `size` bytes into the thread's buffer. Returns nullopt if reading fails.
std::optional<std::string_view> readSmallFile(int file, std::size_t size) {
    const std::span<char> buffer = fileBuffer().first(size);
    const auto filled = readInto(buffer, file);
    if (!filled) return std::nullopt;
    return std::string_view(buffer.data(), *filled);
}

// Reads a file of reported size 0 to its end. Returns nullopt if reading fails or there is more
// than the limit.
std::optional<std::string> readMadeUpFile(int file) {
    const std::span<char> buffer = fileBuffer();
    std::string content;
    while (content.size() <= madeUpSizeLimit) {
        const auto filled = readInto(buffer, file);
        if (!filled) return std::nullopt;
        content.append(buffer.data(), *filled);
        if (*filled < buffer.size()) return content;
    }
    return std::nullopt;
}

// Whether a redirect there leads to another host (URL Standard, section 4.4, "relative slash
// state"). Browsers treat "\" as "/" and remove tabs as well as leading control characters and
// spaces.
bool leadsToAnotherHost(std::string_view location) {
    int slashes = 0;
    for (const char character : location) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '\t' || (slashes == 0 && byte <= ' ')) continue;
        if (character != '/' && character != '\\') return false;
        if (++slashes == 2) return true;
    }
    return false;
}

Response listingResponse(const std::string& folder, std::string_view urlPath, bool headOnly) {
    const FolderListing page(folder, urlPath);
    std::string head = headOf("200 OK", "text/html; charset=utf-8", page.size());
    if (headOnly) return {std::move(head), std::string()};
    if (page.size() <= smallFileSize) {
        const auto buffer = fileBuffer().first(page.size());
        page.write(buffer.data());
        return {std::move(head), std::string_view(buffer.data(), buffer.size())};
    }
    std::string own(page.size(), '\0');
    page.write(own.data());
    return {std::move(head), std::move(own)};
}

// 301 to the unchanged location, or 400 if it would break its header line or lead to another host.
Response redirectResponse(std::string_view location) {
    if (location.find_first_of("\r\n") != location.npos || leadsToAnotherHost(location))
        return errorResponse(Status::badRequest);
    std::string head = "HTTP/1.1 301 Moved Permanently\r\nLocation: ";
    head.append(location).append("\r\nContent-Length: 0").append(headEnd);
    return {std::move(head), std::string()};
}

// ".." cancels the segment before it, which need not exist. So such a path can contain any text and
// still lead to a folder, whose listing would repeat that text as markup.
bool mayBringMarkup(std::string_view path) {
    return path.contains('<') && hasDotSegment(path);
}

Response folderResponse(const std::string& folder, const RequestHead& request) {
    if (mayBringMarkup(request.path)) return errorResponse(Status::badRequest);
    if (!request.path.ends_with('/')) return redirectResponse(request.path + '/');

    const std::string index = folder + "/index.html";
    switch (kindOf(index)) {
    case PathKind::nothing:
        return listingResponse(folder, request.path, request.headOnly);
    case PathKind::file:
        return fileResponse(index, request.headOnly);
    default:
        return errorResponse(Status::forbidden);
    }
}

} // namespace

std::string Response::rest(std::size_t sent) const {
    const std::size_t headSent = std::min(sent, head_.size());
    std::string unsent(head().substr(headSent));
    return unsent.append(body().substr(sent - headSent));
}

Response respond(const RequestHead& request, const std::string& root) {
    const auto path = resolvedPath(root, request.path);
    if (!path) return errorResponse(Status::forbidden);

    switch (kindOf(*path)) {
    case PathKind::nothing:
        return errorResponse(Status::notFound);
    case PathKind::file:
        return fileResponse(*path, request.headOnly);
    case PathKind::folder:
        return folderResponse(*path, request);
    default:
        return errorResponse(Status::forbidden);
    }
}

Response errorResponse(Status status) {
    std::string text =
        std::to_string(static_cast<int>(status)).append(" ").append(reasonFor(status));
    std::string head = headOf(text, "text/plain", text.size());
    return {std::move(head), std::move(text)};
}

Response fileResponse(const std::string& path, bool headOnly) {
    // O_NONBLOCK: something else may have replaced the file by now, and opening a FIFO would block.
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat found {};
    if (!file.isOpen() || ::fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))
        return errorResponse(Status::forbidden);

    const auto size = static_cast<std::size_t>(found.st_size);
    if (size == 0) {
        auto content = readMadeUpFile(file.get());
        if (!content) return errorResponse(Status::forbidden);
        std::string head = headOf("200 OK", mimeType(path), content->size());
        return {std::move(head), headOnly ? std::string() : std::move(*content)};
    }
    LargeFile opened(std::move(file), size);
    if (size > smallFileSize || (size > copiedSize && !headOnly && opened.isCached(0, size)))
        return {headOf("200 OK", mimeType(path), size), std::move(opened), headOnly};
    const auto bytes = readSmallFile(opened.descriptor(), size);
    if (!bytes) return errorResponse(Status::forbidden);
    return {headOf("200 OK", mimeType(path), bytes->size()),
            headOnly ? std::string_view() : *bytes};
}

} // namespace brevane
