#include "core/importing/stored_text.h"

#include "core/text/cp1251.h"

#include <array>
#include <cstdint>
#include <unordered_map>

namespace finora {
namespace {

// The plain letter of each letter from U+00C0 to U+017F; '*' marks the few that become two
// letters, '-' the signs among them (× and ÷), which have no letter.
constexpr std::string_view kPlainLatin = "AAAAAA*CEEEEIIII"
                                         "DNOOOOO-OUUUUY**"
                                         "aaaaaa*ceeeeiiii"
                                         "dnooooo-ouuuuy*y"
                                         "AaAaAaCcCcCcCcDd"
                                         "DdEeEeEeEeEeGgGg"
                                         "GgGgHhHhIiIiIiIi"
                                         "Ii**JjKkkLlLlLlL"
                                         "lLlNnNnNnnNnOoOo"
                                         "Oo**RrRrRrSsSsSs"
                                         "SsTtTtTtUuUuUuUu"
                                         "UuUuWwYyYZzZzZzs";
constexpr char32_t kPlainLatinFirst = 0xC0;

std::string_view plainLetters(char32_t c)
{
    switch (c) {
    case 0xC6:
        return "AE";
    case 0xE6:
        return "ae";
    case 0xDE:
        return "TH";
    case 0xFE:
        return "th";
    case 0xDF:
        return "ss";
    case 0x132:
        return "IJ";
    case 0x133:
        return "ij";
    case 0x152:
        return "OE";
    case 0x153:
        return "oe";
    case 0x218:
        return "S"; // the Romanian letters with a comma below
    case 0x219:
        return "s";
    case 0x21A:
        return "T";
    case 0x21B:
        return "t";
    default:
        break;
    }
    if (c >= kPlainLatinFirst && c < kPlainLatinFirst + kPlainLatin.size()) {
        const std::string_view one = kPlainLatin.substr(c - kPlainLatinFirst, 1);
        return one == "-" ? std::string_view() : one;
    }
    return {};
}

// Every character Windows-1251 has, by code point: built once from the codec itself.
const std::unordered_map<char32_t, char>& cp1251Bytes()
{
    static const auto table = [] {
        std::unordered_map<char32_t, char> bytes;
        for (int b = 0; b < 256; ++b) {
            const char byte = static_cast<char>(b);
            const std::string utf8 = cp1251::toUtf8(std::string_view(&byte, 1));
            char32_t c = 0;
            const auto u = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
            if (utf8.size() == 1) {
                c = u(0);
            } else if (utf8.size() == 2) {
                c = (u(0) & 0x1Fu) << 6 | (u(1) & 0x3Fu);
            } else if (utf8.size() == 3) {
                c = (u(0) & 0x0Fu) << 12 | (u(1) & 0x3Fu) << 6 | (u(2) & 0x3Fu);
            }
            bytes.emplace(c, byte);
        }
        return bytes;
    }();
    return table;
}

// The next character of `text` from `pos`, which moves past it; 0xFFFFFFFF for a byte that
// does not start a well-formed UTF-8 sequence (the byte alone is skipped).
char32_t nextCharacter(std::string_view text, std::size_t& pos)
{
    constexpr char32_t kBad = 0xFFFFFFFF;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(pos);
    std::size_t length = 0;
    char32_t c = 0;
    if (lead < 0x80) {
        ++pos;
        return lead;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        c = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        c = lead & 0x0Fu;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        c = lead & 0x07u;
    } else {
        ++pos;
        return kBad;
    }
    if (pos + length > text.size()) {
        ++pos;
        return kBad;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(pos + i) & 0xC0u) != 0x80u) {
            ++pos;
            return kBad;
        }
        c = c << 6 | (byte(pos + i) & 0x3Fu);
    }
    // Overlong forms, surrogates and code points past Unicode are not characters.
    if ((length == 3 && c < 0x800) || (length == 4 && (c < 0x10000 || c > 0x10FFFF)) ||
        (c >= 0xD800 && c <= 0xDFFF)) {
        ++pos;
        return kBad;
    }
    pos += length;
    return c;
}

} // namespace

StoredText toStoredText(std::string_view utf8)
{
    const auto& bytes = cp1251Bytes();
    StoredText out;
    out.bytes.reserve(utf8.size());
    std::basic_string<char32_t> named;
    std::size_t pos = 0;
    while (pos < utf8.size()) {
        const std::size_t start = pos;
        const char32_t c = nextCharacter(utf8, pos);
        if (const auto known = bytes.find(c); known != bytes.end()) {
            out.bytes += known->second;
            continue;
        }
        if (const std::string_view plain = plainLetters(c); !plain.empty()) {
            out.bytes += plain;
            continue;
        }
        if (named.find(c) != std::basic_string<char32_t>::npos) {
            continue;
        }
        named += c;
        if (!out.dropped.empty()) {
            out.dropped += ' ';
        }
        // A byte that is no character is named by its value, which a note can show.
        if (c == 0xFFFFFFFF) {
            static constexpr char kHex[] = "0123456789ABCDEF";
            const auto b = static_cast<unsigned char>(utf8[start]);
            out.dropped += std::string("\\x") + kHex[b >> 4] + kHex[b & 0xF];
        } else {
            out.dropped.append(utf8.substr(start, pos - start));
        }
    }
    return out;
}

} // namespace finora
