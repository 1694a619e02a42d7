// SPDX-License-Identifier: MIT
#include "WholeFile.h"

#include "Descriptor.h"
#include "SystemError.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>

namespace brevane {

namespace {

namespace fs = std::filesystem;

constexpr mode_t ownersFile = S_IRUSR | S_IWUSR;

std::error_code makeFolder(const fs::path& folder) {
    std::error_code unknown;
    if (folder.empty() || fs::is_directory(folder, unknown)) return {};
    if (const std::error_code error = makeFolder(folder.parent_path())) return error;
    if (mkdir(folder.c_str(), S_IRWXU) == -1) return lastSystemError();
    return {};
}

std::error_code writeToDisk(const fs::path& file, std::string_view bytes) {
    // A leftover file keeps its old mode, and may not be a regular file.
    if (unlink(file.c_str()) == -1 && errno != ENOENT) return lastSystemError();
    const Descriptor output(
        open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownersFile));
    if (!output.isOpen()) return lastSystemError();
    if (fchmod(output.get(), ownersFile) == -1) return lastSystemError();
    while (!bytes.empty()) {
        const ssize_t count = write(output.get(), bytes.data(), bytes.size());
        if (count == -1 && errno != EINTR) return lastSystemError();
        if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    if (fsync(output.get()) == -1) return lastSystemError();
    return {};
}

} // namespace

std::expected<std::string, std::error_code> readWholeFile(const fs::path& file) {
    // Without O_NONBLOCK, opening a FIFO blocks until it has a writer.
    const Descriptor input(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!input.isOpen()) return std::unexpected(lastSystemError());
    struct stat status {};
    if (fstat(input.get(), &status) == -1) return std::unexpected(lastSystemError());
    if (S_ISDIR(status.st_mode))
        return std::unexpected(std::make_error_code(std::errc::is_a_directory));
    if (!S_ISREG(status.st_mode))
        return std::unexpected(std::make_error_code(std::errc::operation_not_supported));
    std::string bytes;
    std::array<char, 16384> chunk;
    while (true) {
        const ssize_t count = read(input.get(), chunk.data(), chunk.size());
        if (count == 0) return bytes;
        if (count == -1 && errno != EINTR) return std::unexpected(lastSystemError());
        if (count > 0) bytes.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

std::error_code replaceWholeFile(const fs::path& file, std::string_view bytes) {
    const fs::path folder = file.parent_path();
    if (const std::error_code error = makeFolder(folder)) return error;

    fs::path temporary = file;
    temporary += ".new";
    std::error_code error = writeToDisk(temporary, bytes);
    if (!error && rename(temporary.c_str(), file.c_str()) == -1) error = lastSystemError();
    if (error) {
        unlink(temporary.c_str());
        return error;
    }

    // Makes the rename durable. Errors are ignored, since some file systems do not support this.
    const Descriptor entries(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (entries.isOpen()) fsync(entries.get());
    return {};
}

} // namespace brevane
