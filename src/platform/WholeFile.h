// SPDX-License-Identifier: MIT
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace brevane {

/// Reads a regular file, or returns the operating system's error. For anything else it returns
/// std::errc::is_a_directory or std::errc::operation_not_supported without blocking.
[[nodiscard]] std::expected<std::string, std::error_code>
readWholeFile(const std::filesystem::path& file);

/// Creates or replaces a file with mode 0600. Writes the bytes to FILE.new, flushes them to disk
/// and renames it over the file, which thus holds all of the old bytes or all of the new ones at
/// any instant. Creates missing folders with mode 0700. On failure returns the operating system's
/// error and leaves the file as it was.
[[nodiscard]] std::error_code replaceWholeFile(const std::filesystem::path& file,
                                               std::string_view bytes);

} // namespace brevane
