// SPDX-License-Identifier: MIT
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace brevane {

/// All bytes of a regular file, or the error of the operating system. Anything else is not waited
/// for: std::errc::is_a_directory or std::errc::operation_not_supported.
[[nodiscard]] std::expected<std::string, std::error_code>
readWholeFile(const std::filesystem::path& file);

/// Replaces a file, or makes it, as one that its owner alone can read. The bytes go to FILE.new,
/// are flushed to disk and renamed over the file, so that at any instant it holds all of the old
/// bytes or all of the new ones. The folder is made, for its owner alone, if it is missing. Returns
/// the error of the operating system; the file is as it was then.
[[nodiscard]] std::error_code replaceWholeFile(const std::filesystem::path& file,
                                               std::string_view bytes);

} // namespace brevane
