// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>

namespace brevane {

/// The most that one read receives from a connection, in bytes.
inline constexpr std::size_t receiveSize = 64 * 1024;
/// Files up to this size, in bytes, are read by handlers; uncached parts of larger ones by loaders.
inline constexpr std::size_t smallFileSize = 256 * 1024;

/// The calling thread's buffer for received bytes, valid until the handler returns.
[[nodiscard]] std::span<char> receiveBuffer();
/// The calling thread's buffer for a small file, valid until the handler returns.
[[nodiscard]] std::span<char> fileBuffer();

} // namespace brevane
