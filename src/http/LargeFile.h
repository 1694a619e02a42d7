// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <cstddef>
#include <utility>

namespace brevane {

/// A regular file that sendfile(2) sends from the page cache, into which all of it is read before
/// its first byte is sent.
class LargeFile {
public:
    LargeFile(Descriptor openFile, std::size_t byteCount)
        : file_(std::move(openFile)), size_(byteCount) {}

    [[nodiscard]] int descriptor() const { return file_.get(); }
    /// Its size in bytes when it was opened.
    [[nodiscard]] std::size_t size() const { return size_; }

    /// Whether the page cache holds these bytes; false if that cannot be known without blocking on
    /// the disk.
    [[nodiscard]] bool isCached(std::size_t offset, std::size_t length) const;
    /// Reads these bytes into the page cache, blocking on the disk. Returns false if they cannot be
    /// read or the file was truncated.
    [[nodiscard]] bool bring(std::size_t offset, std::size_t length) const;
    /// Whether the file was truncated since it was opened. The kernel zeroes the rest of the last
    /// page, even if it is still sending that page.
    [[nodiscard]] bool isCutShort() const;

    /// For exchanging the descriptor for a duplicate of it.
    [[nodiscard]] Descriptor& ownDescriptor() { return file_; }

private:
    Descriptor file_;
    std::size_t size_;
};

} // namespace brevane
