// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <cstddef>
#include <utility>

namespace brevane {

/// A regular file that the kernel sends from its cache, where all of it is to be before its first
/// byte goes out.
class LargeFile {
public:
    LargeFile(Descriptor openFile, std::size_t byteCount)
        : file_(std::move(openFile)), size_(byteCount) {}

    [[nodiscard]] int descriptor() const { return file_.get(); }
    /// How many bytes it had when it was opened.
    [[nodiscard]] std::size_t size() const { return size_; }

    /// Whether the kernel's cache holds these bytes. Also false where that cannot be known without
    /// waiting for the disk.
    [[nodiscard]] bool isCached(std::size_t offset, std::size_t length) const;
    /// Brings these bytes into the cache, and waits for the disk. False where they cannot be read
    /// or the file was cut short.
    [[nodiscard]] bool bring(std::size_t offset, std::size_t length) const;
    /// Whether it has fewer bytes than when it was opened. The kernel clears what a cut leaves of a
    /// page, also of one that it is still sending.
    [[nodiscard]] bool isCutShort() const;

    /// Exchanges the descriptor for the same file's.
    [[nodiscard]] Descriptor& ownDescriptor() { return file_; }

private:
    Descriptor file_;
    std::size_t size_;
};

} // namespace brevane
