// SPDX-License-Identifier: MIT
#include "LargeFile.h"

#include "ThreadBuffers.h"

#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <span>

#ifdef __linux__
#include <sys/syscall.h>
#else
#include <sys/mman.h>

#include <vector>
#endif

namespace brevane {

namespace {

const std::size_t pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

#ifdef __linux__
// cachestat(2): in Linux since 6.5, in C libraries only later.
constexpr long cachestatCall = 451;
struct CacheRange {
    std::uint64_t offset;
    std::uint64_t length;
};
struct CacheState {
    std::uint64_t cached;
    std::uint64_t dirty;
    std::uint64_t writeback;
    std::uint64_t evicted;
    std::uint64_t recentlyEvicted;
};

// Reads one byte of each page without blocking. mincore(2) reports all pages of other users' files
// as cached.
bool canReadAllPages(int file, std::size_t offset, std::size_t end) {
    for (; offset < end; offset = (offset / pageSize + 1) * pageSize) {
        char byte = 0;
        const iovec vector{.iov_base = &byte, .iov_len = 1};
        if (::preadv2(file, &vector, 1, static_cast<off_t>(offset), RWF_NOWAIT) != 1) return false;
    }
    return true;
}

bool isRangeCached(int file, std::size_t offset, std::size_t length) {
    const CacheRange range{.offset = offset, .length = length};
    CacheState state{};
    const std::size_t pages = (offset + length - 1) / pageSize - offset / pageSize + 1;
    // Fails on older kernels, and on newer ones for other users' files that this process cannot
    // write.
    if (::syscall(cachestatCall, file, &range, &state, 0) == 0) return state.cached >= pages;
    return canReadAllPages(file, offset, offset + length);
}
#else
bool isRangeCached(int file, std::size_t offset, std::size_t length) {
    const std::size_t begin = offset / pageSize * pageSize;
    const std::size_t mappedLength = offset + length - begin;
    void* const mapped =
        ::mmap(nullptr, mappedLength, PROT_READ, MAP_SHARED, file, static_cast<off_t>(begin));
    if (mapped == MAP_FAILED) return false;
    std::vector<char> pages((mappedLength + pageSize - 1) / pageSize);
    const bool known = ::mincore(static_cast<char*>(mapped), mappedLength, pages.data()) == 0;
    ::munmap(mapped, mappedLength);
    return known &&
           std::ranges::all_of(pages, [](char page) { return (page & MINCORE_INCORE) != 0; });
}
#endif

} // namespace

bool LargeFile::isCached(std::size_t offset, std::size_t length) const {
    return isRangeCached(file_.get(), offset, length);
}

bool LargeFile::bring(std::size_t offset, std::size_t length) const {
    const std::span<char> buffer = fileBuffer();
    for (const std::size_t end = offset + length; offset < end;) {
        const auto count =
            ::pread(file_.get(), buffer.data(), std::min(buffer.size(), end - offset),
                    static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        offset += static_cast<std::size_t>(count);
    }
    return true;
}

bool LargeFile::isCutShort() const {
    struct stat found {};
    return ::fstat(file_.get(), &found) != 0 || static_cast<std::size_t>(found.st_size) < size_;
}

} // namespace brevane
