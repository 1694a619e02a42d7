// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string_view>

namespace brevane {

/// The deepest nesting of objects and arrays that Brevane reads.
inline constexpr int maxJsonDepth = 512;

/// Told of each member of an object, in order: the key as it is written, with its quotes, and the
/// text of the value.
using JsonMemberVisitor = std::function<void(std::string_view key, std::string_view value)>;

/// Checks that a document is a JSON object (RFC 8259) in UTF-8 that nests no deeper than
/// `maxJsonDepth`, and tells of its members without building anything. On false, what was told
/// before does not count.
[[nodiscard]] bool scanJsonObject(std::string_view document, const JsonMemberVisitor& visit);

} // namespace brevane
