// SPDX-License-Identifier: MIT
#pragma once

#include "Descriptor.h"

#include <atomic>
#include <cstddef>
#include <string_view>

namespace brevane {

/// A regular file that is brought into memory whole before its first byte is sent. On Linux it is
/// mapped: only the kernel may touch the bytes, since a file cut short meanwhile has none there
/// any more, which ends a send with an error and a program with a signal.
class LargeFile {
public:
    LargeFile(Descriptor openFile, std::size_t byteCount);
    ~LargeFile();
    LargeFile(LargeFile&& other) noexcept;
    LargeFile& operator=(LargeFile&& other) noexcept;

    [[nodiscard]] bool isLoaded() const { return memory != nullptr; }
    /// Waits for the disk. False where the file cannot be read, or was cut short, or `ending` is
    /// set.
    [[nodiscard]] bool load(const std::atomic<bool>& ending);

    [[nodiscard]] std::size_t size() const { return count; }
    /// All bytes of a loaded file.
    [[nodiscard]] std::string_view bytes() const { return {memory, count}; }

private:
    Descriptor file;
    std::size_t count;
    char* memory = nullptr;
};

} // namespace brevane
