// SPDX-License-Identifier: MIT
#include "ShellQuote.h"

namespace brevane {

std::string shellQuote(std::string_view text) {
    if (text.find_first_of(" ()&'") == std::string_view::npos) return std::string(text);

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
