// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>

namespace brevane {

/// The most that one read takes from a connection.
inline constexpr std::size_t receiveSize = 64 * 1024;
/// Files up to this size are the handler's own work, of larger ones loaders bring what is missing.
inline constexpr std::size_t smallFileSize = 256 * 1024;

/// The calling thread's buffer for bytes received, to be used up before the handler ends.
[[nodiscard]] std::span<char> receiveBuffer();
/// The calling thread's buffer for a small file, to be sent or copied before the handler ends.
[[nodiscard]] std::span<char> fileBuffer();

} // namespace brevane
