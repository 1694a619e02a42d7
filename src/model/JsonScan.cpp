// SPDX-License-Identifier: MIT
#include "JsonScan.h"

#include <boost/nowide/utf/utf.hpp>

#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace brevane {
namespace {

// Texts and indents, nearly all of a document, are passed eight bytes at a time.

constexpr std::uint64_t eightTimes(unsigned char byte) {
    return 0x0101'0101'0101'0101U * byte;
}

/// The first of eight bytes is the lowest.
std::uint64_t loadEight(const char* at) {
    std::uint64_t bytes;
    std::memcpy(&bytes, at, sizeof bytes);
    if constexpr (std::endian::native == std::endian::big) bytes = std::byteswap(bytes);
    return bytes;
}

/// How many bytes stand before the lowest that is not zero.
int leadingZeroBytes(std::uint64_t bytes) {
    return std::countr_zero(bytes) / 8;
}

/// The top bit of the first byte that is a quote, a backslash, below a space or not ASCII, and
/// perhaps of later ones: a borrow only ever goes up from such a byte.
std::uint64_t firstSpecial(std::uint64_t bytes) {
    const std::uint64_t one = eightTimes(1);
    return (((bytes ^ eightTimes('"')) - one) | ((bytes ^ eightTimes('\\')) - one) |
            (bytes - eightTimes(' ')) | bytes) &
           eightTimes(0x80);
}

bool isBlank(char byte) {
    return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t';
}
bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

/// Walks over a document. Each function takes where a part of it should begin and gives where that
/// part ends, or null where the document is not valid.
class Scanner {
public:
    explicit Scanner(const char* documentEnd) : end(documentEnd) {}

    bool isAt(const char* at, char byte) const { return at != end && *at == byte; }

    const char* pastBlanks(const char* at) const {
        while (at != end && isBlank(*at)) {
            ++at;
            while (end - at >= 8) {
                const std::uint64_t others = loadEight(at) ^ eightTimes(' ');
                if (others != 0) {
                    at += leadingZeroBytes(others);
                    break;
                }
                at += 8;
            }
        }
        return at;
    }

    template <class Visitor>
    const char* pastObject(const char* at, int depth, const Visitor& visit) const {
        if (depth > maxJsonDepth) return nullptr;
        at = pastBlanks(at + 1);
        if (isAt(at, '}')) return at + 1;
        for (;;) {
            const char* const key = at;
            if (!isAt(at, '"')) return nullptr;
            const char* const keyEnd = pastString(at);
            if (!keyEnd) return nullptr;
            at = pastBlanks(keyEnd);
            if (!isAt(at, ':')) return nullptr;
            const char* const value = pastBlanks(at + 1);
            at = pastValue(value, depth + 1);
            if (!at) return nullptr;
            visit(std::string_view(key, keyEnd), std::string_view(value, at));
            at = pastBlanks(at);
            if (isAt(at, '}')) return at + 1;
            if (!isAt(at, ',')) return nullptr;
            at = pastBlanks(at + 1);
        }
    }

private:
    const char* pastValue(const char* at, int depth) const {
        if (at == end) return nullptr;
        switch (*at) {
        case '"':
            return pastString(at);
        case '{':
            return pastInnerObject(at, depth);
        case '[':
            return pastArray(at, depth);
        case 't':
            return pastWord(at, "true");
        case 'f':
            return pastWord(at, "false");
        case 'n':
            return pastWord(at, "null");
        default:
            return pastNumber(at);
        }
    }

    const char* pastInnerObject(const char* at, int depth) const {
        return pastObject(at, depth, [](std::string_view, std::string_view) {});
    }

    const char* pastArray(const char* at, int depth) const {
        if (depth > maxJsonDepth) return nullptr;
        at = pastBlanks(at + 1);
        if (isAt(at, ']')) return at + 1;
        for (;;) {
            at = pastValue(at, depth + 1);
            if (!at) return nullptr;
            at = pastBlanks(at);
            if (isAt(at, ']')) return at + 1;
            if (!isAt(at, ',')) return nullptr;
            at = pastBlanks(at + 1);
        }
    }

    const char* pastString(const char* at) const {
        ++at;
        while (at) {
            while (end - at >= 8) {
                const std::uint64_t special = firstSpecial(loadEight(at));
                if (special != 0) {
                    at += leadingZeroBytes(special);
                    break;
                }
                at += 8;
            }
            if (at == end) return nullptr;
            if (*at == '"') return at + 1;
            at = pastCharacter(at);
        }
        return nullptr;
    }

    /// Past one character of a string: ASCII, an escape or a UTF-8 sequence.
    const char* pastCharacter(const char* at) const {
        const auto byte = static_cast<unsigned char>(*at);
        if (byte < ' ') return nullptr;
        if (byte == '\\') return pastEscape(at + 1);
        if (byte < 0x80) return at + 1;
        using Utf8 = boost::nowide::utf::utf_traits<char>;
        const auto character = Utf8::decode(at, end);
        return boost::nowide::utf::is_valid_codepoint(character) ? at : nullptr;
    }

    /// Past what follows the backslash. A leading surrogate needs its trailing one.
    const char* pastEscape(const char* at) const {
        if (at == end) return nullptr;
        if (*at != 'u') return std::string_view("\"\\/bfnrt").contains(*at) ? at + 1 : nullptr;
        const int unit = codeUnit(at + 1);
        at += 5;
        if (unit < 0 || (unit >= 0xDC00 && unit <= 0xDFFF)) return nullptr;
        if (unit < 0xD800 || unit > 0xDFFF) return at;
        if (end - at < 2 || at[0] != '\\' || at[1] != 'u') return nullptr;
        const int trailing = codeUnit(at + 2);
        return trailing >= 0xDC00 && trailing <= 0xDFFF ? at + 6 : nullptr;
    }

    /// The value of four hexadecimal digits, or -1.
    int codeUnit(const char* at) const {
        unsigned value = 0;
        if (end - at < 4 || std::from_chars(at, at + 4, value, 16).ptr != at + 4) return -1;
        return static_cast<int>(value);
    }

    const char* pastWord(const char* at, std::string_view word) const {
        return std::string_view(at, end).starts_with(word) ? at + word.size() : nullptr;
    }

    const char* pastNumber(const char* at) const {
        if (isAt(at, '-')) ++at;
        at = isAt(at, '0') ? at + 1 : pastDigits(at);
        if (at && isAt(at, '.')) at = pastDigits(at + 1);
        if (at && (isAt(at, 'e') || isAt(at, 'E'))) {
            ++at;
            if (isAt(at, '+') || isAt(at, '-')) ++at;
            at = pastDigits(at);
        }
        return at;
    }

    const char* pastDigits(const char* at) const {
        if (at == end || !isDigit(*at)) return nullptr;
        while (at != end && isDigit(*at))
            ++at;
        return at;
    }

    const char* end;
};

} // namespace

bool scanJsonObject(std::string_view document, const JsonMemberVisitor& visit) {
    const char* const end = document.data() + document.size();
    const Scanner scanner(end);
    const char* at = scanner.pastBlanks(document.data());
    if (!scanner.isAt(at, '{')) return false;
    at = scanner.pastObject(at, 1, visit);
    return at && scanner.pastBlanks(at) == end;
}

} // namespace brevane
