// SPDX-License-Identifier: MIT
#include "Response.h"

#include "FolderListing.h"
#include "MediaType.h"
#include "ThreadBuffers.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

std::string_view reasonFor(int status) {
    switch (status) {
    case 400:
        return "Bad Request";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    default:
        return "Error";
    }
}

// Some file systems make a file's content up as it is read, and a few of those files never end.
constexpr std::size_t madeUpSizeLimit = 64 * 1024 * 1024;

// Fills the buffer, or as much of it as there is. Nothing where reading fails.
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

// The content of a file that has `size` bytes, in the thread's buffer. Nothing where reading fails.
std::optional<std::string_view> readSmallFile(int file, std::size_t size) {
    const std::span<char> buffer = fileBuffer().first(size);
    const auto filled = readInto(buffer, file);
    if (!filled) return std::nullopt;
    return std::string_view(buffer.data(), *filled);
}

// The content of a file whose size is said to be 0, to its end. Nothing where reading fails.
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

// A client that is sent there asks another host (URL Standard, section 4.4, "relative slash
// state"). It takes "\" for "/" and leaves out tabs, and control characters and spaces at the
// beginning.
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

} // namespace

LargeFile* Response::fileToLoad() {
    auto* const file = std::get_if<LargeFile>(&body);
    return file != nullptr && !file->isLoaded() ? file : nullptr;
}

std::string_view Response::bodyBytes() const {
    if (const auto* const text = std::get_if<std::string>(&body)) return *text;
    if (const auto* const lent = std::get_if<std::string_view>(&body)) return *lent;
    return std::get<LargeFile>(body).bytes();
}

void Response::keep() {
    if (const auto* const lent = std::get_if<std::string_view>(&body)) body = std::string(*lent);
}

Response fileResponse(const std::string& path, bool headOnly) {
    // Should something else have taken the file's place meanwhile, opening it waits for nobody.
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat found {};
    if (!file.isOpen() || ::fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))
        return errorResponse(403);

    const auto size = static_cast<std::size_t>(found.st_size);
    if (size > smallFileSize) {
        Response response{headOf("200 OK", mimeType(path), size), {}};
        if (!headOnly) response.body = LargeFile(std::move(file), size);
        return response;
    }
    if (size == 0) {
        auto content = readMadeUpFile(file.get());
        if (!content) return errorResponse(403);
        Response response{headOf("200 OK", mimeType(path), content->size()), {}};
        if (!headOnly) response.body = std::move(*content);
        return response;
    }
    const auto bytes = readSmallFile(file.get(), size);
    if (!bytes) return errorResponse(403);
    Response response{headOf("200 OK", mimeType(path), bytes->size()), {}};
    if (!headOnly) response.body = *bytes;
    return response;
}

Response listingResponse(const std::string& folder, std::string_view urlPath, bool headOnly) {
    const FolderListing page(folder, urlPath);
    Response response{headOf("200 OK", "text/html; charset=utf-8", page.size()), {}};
    if (headOnly) return response;
    if (page.size() <= smallFileSize) {
        const auto buffer = fileBuffer().first(page.size());
        page.write(buffer.data());
        response.body = std::string_view(buffer.data(), buffer.size());
    } else {
        std::string own(page.size(), '\0');
        page.write(own.data());
        response.body = std::move(own);
    }
    return response;
}

Response redirectResponse(std::string_view location) {
    if (location.find_first_of("\r\n") != location.npos || leadsToAnotherHost(location))
        return errorResponse(400);
    std::string head = "HTTP/1.1 301 Moved Permanently\r\nLocation: ";
    head.append(location).append("\r\nContent-Length: 0").append(headEnd);
    return {std::move(head), {}};
}

Response errorResponse(int status) {
    const std::string text = std::to_string(status).append(" ").append(reasonFor(status));
    return {headOf(text, "text/plain", text.size()), text};
}

} // namespace brevane
