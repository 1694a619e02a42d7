// SPDX-License-Identifier: MIT
#include "LargeFile.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#ifdef __linux__
#include <sys/mman.h>
#else
#include <cstdlib>
#include <unistd.h>
#endif

namespace brevane {

namespace {

// Loaded between two looks at whether the pool ends.
constexpr std::size_t pieceSize = 16 * 1024 * 1024;

#ifdef __linux__
char* reserve(int file, std::size_t size) {
    void* const mapped = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    return mapped == MAP_FAILED ? nullptr : static_cast<char*>(mapped);
}

bool loadPiece(int /*file*/, char* memory, std::size_t offset, std::size_t size) {
    // Kernels before 5.14 do not know this, and load the pages while they are sent.
    return ::madvise(memory + offset, size, MADV_POPULATE_READ) == 0 || errno == EINVAL;
}

void release(char* memory, std::size_t size) {
    ::munmap(memory, size);
}
#else
char* reserve(int /*file*/, std::size_t size) {
    return static_cast<char*>(std::malloc(size));
}

bool loadPiece(int file, char* memory, std::size_t offset, std::size_t size) {
    for (const std::size_t end = offset + size; offset < end;) {
        const auto count = ::pread(file, memory + offset, end - offset, static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        offset += static_cast<std::size_t>(count);
    }
    return true;
}

void release(char* memory, std::size_t /*size*/) {
    std::free(memory);
}
#endif

} // namespace

LargeFile::LargeFile(Descriptor openFile, std::size_t byteCount)
    : file(std::move(openFile)), count(byteCount) {}

LargeFile::~LargeFile() {
    if (memory != nullptr) release(memory, count);
}

LargeFile::LargeFile(LargeFile&& other) noexcept
    : file(std::move(other.file)), count(other.count),
      memory(std::exchange(other.memory, nullptr)) {}

LargeFile& LargeFile::operator=(LargeFile&& other) noexcept {
    std::swap(file, other.file);
    std::swap(count, other.count);
    std::swap(memory, other.memory);
    return *this;
}

bool LargeFile::load(const std::atomic<bool>& ending) {
    memory = reserve(file.get(), count);
    if (memory == nullptr) return false;
    for (std::size_t offset = 0; offset < count; offset += pieceSize) {
        const std::size_t size = std::min(pieceSize, count - offset);
        if (ending || !loadPiece(file.get(), memory, offset, size)) return false;
    }
    file.close();
    return true;
}

} // namespace brevane
