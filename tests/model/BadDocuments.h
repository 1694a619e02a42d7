// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace brevane::test {

/// `depth` nested arrays.
inline std::string nestedArrays(int depth) {
    const auto count = static_cast<std::size_t>(depth);
    return std::string(count, '[') + std::string(count, ']');
}

/// Documents that every decoder must reject, each with what is wrong with it. `good` is a
/// comma-separated list of members that the decoder accepts.
inline std::vector<std::pair<std::string, std::string>> badDocuments(const std::string& good) {
    using namespace std::string_literals;
    const std::string object = "{" + good + "}";
    const auto withMember = [&](const std::string& member) {
        return "{" + good + "," + member + "}";
    };
    return {
        {"empty", ""},
        {"blank", " \n\t "},
        {"plain text", "zsh:1: no such file or directory: tailscale"},
        {"null", "null"},
        {"true", "true"},
        {"number", "42"},
        {"text", "\"{}\""},
        {"array", "[" + object + "]"},
        {"empty array", "[]"},
        {"cut short", object.substr(0, object.size() - 1)},
        {"trailing text", object + "warning: x"},
        {"trailing brace", object + "}"},
        {"second document", object + "\n" + object},
        {"text before", "# Health check:\n" + object},
        {"byte order mark", "\xEF\xBB\xBF" + object},
        {"UTF-16", "{\0}\0"s},
        {"trailing NUL", object + "\0"s},
        {"leading NUL", "\0"s + object},
        {"NUL inside", withMember("\0\"x\":1"s)},
        {"NUL in a text", withMember("\"x\":\"a\0b\""s)},
        {"line feed in a text", withMember("\"x\":\"a\nb\"")},
        {"trailing comma", "{" + good + ",}"},
        {"missing comma", "{" + good + " " + good + "}"},
        {"missing colon", withMember("\"x\" 1")},
        {"missing value", withMember("\"x\":")},
        {"key without quotes", withMember("x:1")},
        {"key of another type", withMember("1:1")},
        {"single quotes", withMember("'x':1")},
        {"comment", "/* c */" + object},
        {"line comment", object + "// c"},
        {"not a number", withMember("\"x\":NaN")},
        {"infinity", withMember("\"x\":Infinity")},
        {"leading zero", withMember("\"x\":01")},
        {"leading plus", withMember("\"x\":+1")},
        {"leading point", withMember("\"x\":.5")},
        {"trailing point", withMember("\"x\":1.")},
        {"empty exponent", withMember("\"x\":1e")},
        {"lone minus", withMember("\"x\":-")},
        {"hexadecimal", withMember("\"x\":0x10")},
        {"true in capitals", withMember("\"x\":True")},
        {"half a literal", withMember("\"x\":nul")},
        {"unknown escape", withMember(R"("x":"\q")")},
        {"short escape", withMember(R"("x":"\u12")")},
        {"escape of no digits", withMember(R"("x":"\u12G4")")},
        {"lone leading surrogate", withMember(R"("x":"\ud83d")")},
        {"lone trailing surrogate", withMember(R"("x":"\ude00")")},
        {"two leading surrogates", withMember(R"("x":"\ud83d\ud83d")")},
        {"surrogate and letter", withMember(R"("x":"\ud83dA")")},
        {"surrogate in a key", withMember(R"("\ud83d":1)")},
        {"lone continuation byte", withMember("\"x\":\"\x80\"")},
        {"overlong two bytes", withMember("\"x\":\"\xC0\xAF\"")},
        {"overlong three bytes", withMember("\"x\":\"\xE0\x80\xAF\"")},
        {"overlong four bytes", withMember("\"x\":\"\xF0\x80\x80\xAF\"")},
        {"surrogate in UTF-8", withMember("\"x\":\"\xED\xA0\x80\"")},
        {"above the last character", withMember("\"x\":\"\xF4\x90\x80\x80\"")},
        {"byte that UTF-8 never has", withMember("\"x\":\"\xFF\"")},
        {"cut character", withMember("\"x\":\"\xE2\x82\"")},
        {"invalid UTF-8 in a key", withMember("\"\xFF\":1")},
        {"open text", withMember("\"x\":\"abc")},
        {"open array", withMember("\"x\":[1,2")},
        {"mismatched brackets", withMember("\"x\":[1}")},
        {"trailing comma in an array", withMember("\"x\":[1,]")},
        {"nested 513 deep", withMember("\"x\":" + nestedArrays(512))},
        {"nested far too deep", withMember("\"x\":" + nestedArrays(1'000'000))},
        {"open 513 deep", withMember("\"x\":" + std::string(512, '['))},
    };
}

/// Members that every decoder must skip, each with what is special about it.
inline std::vector<std::pair<std::string, std::string>> oddMembers() {
    return {
        {"empty key", R"("":1)"},
        {"escaped key", R"("\u0041\n\"":1)"},
        {"every escape", R"("x":"\"\\\/\b\f\n\r\t\u00e9\uD83D\uDE00")"},
        {"escaped NUL", R"("x":"a\u0000b")"},
        {"long text", "\"x\":\"" + std::string(100'000, 'a') + "\""},
        {"long text with escapes",
         "\"x\":\"" + std::string(5'000, 'a') + "\\n\xC3\xA9" + std::string(5'000, 'b') + "\""},
        {"long key", "\"" + std::string(100'000, 'k') + "\":1"},
        {"UTF-8 of every length", "\"x\":\"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\""},
        {"first and last of each length", "\"x\":"
                                          "\"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80"
                                          "\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\""},
        {"numbers",
         R"("x":[0,-0,1,-1,0.5,1e5,1E+5,1e-5,123456789012345678901234567890,-1.25e-300])"},
        {"blanks", " \"x\" \t:\r\n [ 1 , { } , [ ] ] "},
        {"literals", R"("x":[true,false,null,{},[],""])"},
        {"nested 512 deep", "\"x\":" + nestedArrays(511)},
    };
}

} // namespace brevane::test
