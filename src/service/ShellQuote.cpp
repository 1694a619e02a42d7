// SPDX-License-Identifier: MIT
#include "ShellQuote.h"

namespace brevane {

std::string shellQuote(std::string_view text) {
    const bool needsQuotes = text.find_first_of(" ()&'") != std::string_view::npos;
    return needsQuotes ? inSingleQuotes(text) : std::string(text);
}

std::string inSingleQuotes(std::string_view text) {
    std::string quoted = "'";
    for (const char character : text) {
        if (character == '\'')
            quoted += R"('\'')"; // close the quoted run, an escaped quote, reopen
        else
            quoted += character;
    }
    quoted += '\'';
    return quoted;
}

} // namespace brevane
