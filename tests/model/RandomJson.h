// SPDX-License-Identifier: MIT
#pragma once

#include <rapidcheck.h>

#include <string>
#include <vector>

namespace brevane::test {

/// A random JSON value with random white space, escapes and number formats.
inline std::string randomJson(int depth) {
    using rc::gen::elementOf;
    using Texts = std::vector<std::string>;
    const auto blanks = [] { return *elementOf(Texts{"", "", "", " ", "\n        ", "\t\r\n"}); };
    const auto text = [] {
        static const Texts pieces{"a",
                                  "key",
                                  "0123456789abcdef",
                                  "\\n",
                                  "\\\"",
                                  "\\\\",
                                  "\\/",
                                  "\\u00e9",
                                  "\\uD83D\\uDE00",
                                  "\xC3\xA9",
                                  "\xE2\x82\xAC",
                                  "\xF0\x9F\x98\x80",
                                  "[",
                                  "}",
                                  "\x7F"};
        std::string joined = "\"";
        for (const auto& piece : *rc::gen::container<Texts>(elementOf(pieces)))
            joined += piece;
        return joined + '"';
    };
    static const Texts scalars{"null", "true", "false", "0",     "-0",      "7",
                               "-12",  "1.5",  "1e5",   "2E-10", "-0.0e+1", "12345678901234567890"};
    switch (*rc::gen::inRange(0, depth > 0 ? 4 : 2)) {
    case 0:
        return *elementOf(scalars);
    case 1:
        return text();
    case 2: {
        std::string array = "[" + blanks();
        const int size = *rc::gen::inRange(0, 4);
        for (int i = 0; i < size; ++i)
            array.append(i ? "," : "").append(blanks() + randomJson(depth - 1) + blanks());
        return array + ']';
    }
    default: {
        std::string object = "{" + blanks();
        const int size = *rc::gen::inRange(0, 4);
        for (int i = 0; i < size; ++i)
            object.append(i ? "," : "")
                .append(blanks() + text() + blanks() + ":" + blanks() + randomJson(depth - 1))
                .append(blanks());
        return object + '}';
    }
    }
}

} // namespace brevane::test
