// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace brevane {

/// The text as one word for the shell: in single quotes if it holds a space, "(", ")", "&" or a
/// single quote, else unchanged. Other characters that the shell interprets do not make it quote.
[[nodiscard]] std::string shellQuote(std::string_view text);

/// The text as one word for the shell, in single quotes, whatever it holds.
[[nodiscard]] std::string inSingleQuotes(std::string_view text);

} // namespace brevane
