#include "core/text/cp1251.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

namespace finora::cp1251 {
namespace {

// Unicode code points of bytes 0x80..0xFF. 0x98 has no character in the code page; it maps to
// U+0098 so that every byte survives a round trip through Unicode.
constexpr std::array<char16_t, 128> kHighHalf = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, // 80
    0x20AC, 0x2030, 0x0409, 0x2039, 0x040A, 0x040C, 0x040B, 0x040F, // 88
    0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, // 90
    0x0098, 0x2122, 0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, // 98
    0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6, 0x00A7, // A0
    0x0401, 0x00A9, 0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407, // A8
    0x00B0, 0x00B1, 0x0406, 0x0456, 0x0491, 0x00B5, 0x00B6, 0x00B7, // B0
    0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457, // B8
    0x0410, 0x0411, 0x0412, 0x0413, 0x0414, 0x0415, 0x0416, 0x0417, // C0
    0x0418, 0x0419, 0x041A, 0x041B, 0x041C, 0x041D, 0x041E, 0x041F, // C8
    0x0420, 0x0421, 0x0422, 0x0423, 0x0424, 0x0425, 0x0426, 0x0427, // D0
    0x0428, 0x0429, 0x042A, 0x042B, 0x042C, 0x042D, 0x042E, 0x042F, // D8
    0x0430, 0x0431, 0x0432, 0x0433, 0x0434, 0x0435, 0x0436, 0x0437, // E0
    0x0438, 0x0439, 0x043A, 0x043B, 0x043C, 0x043D, 0x043E, 0x043F, // E8
    0x0440, 0x0441, 0x0442, 0x0443, 0x0444, 0x0445, 0x0446, 0x0447, // F0
    0x0448, 0x0449, 0x044A, 0x044B, 0x044C, 0x044D, 0x044E, 0x044F, // F8
};

// Reverse lookup: the 128 high code points sorted, each with its byte.
struct ReverseEntry {
    char16_t codePoint;
    unsigned char byte;
};

constexpr std::array<ReverseEntry, 128> makeReverse()
{
    std::array<ReverseEntry, 128> table{};
    for (std::size_t i = 0; i < 128; ++i) {
        table[i] = {kHighHalf[i], static_cast<unsigned char>(0x80 + i)};
    }
    std::sort(table.begin(), table.end(), [](const ReverseEntry& a, const ReverseEntry& b) {
        return a.codePoint < b.codePoint;
    });
    return table;
}

constexpr std::array<ReverseEntry, 128> kReverse = makeReverse();

// The byte for a code point, or -1 when the code page has none.
int byteFor(char32_t cp)
{
    if (cp < 0x80) {
        return static_cast<int>(cp);
    }
    if (cp > 0xFFFF) {
        return -1;
    }
    auto it =
        std::lower_bound(kReverse.begin(), kReverse.end(), cp,
                         [](const ReverseEntry& e, char32_t value) { return e.codePoint < value; });
    if (it == kReverse.end() || it->codePoint != cp) {
        return -1;
    }
    return it->byte;
}

// Decodes one UTF-8 sequence at `pos`; returns false on a malformed one (overlong forms,
// surrogates and values past U+10FFFF included).
bool nextCodePoint(std::string_view s, std::size_t& pos, char32_t& cp)
{
    const auto b0 = static_cast<unsigned char>(s[pos]);
    int extra = 0;
    char32_t min = 0;
    if (b0 < 0x80) {
        cp = b0;
        ++pos;
        return true;
    } else if ((b0 & 0xE0) == 0xC0) {
        extra = 1;
        cp = b0 & 0x1F;
        min = 0x80;
    } else if ((b0 & 0xF0) == 0xE0) {
        extra = 2;
        cp = b0 & 0x0F;
        min = 0x800;
    } else if ((b0 & 0xF8) == 0xF0) {
        extra = 3;
        cp = b0 & 0x07;
        min = 0x10000;
    } else {
        return false;
    }
    if (s.size() - pos <= static_cast<std::size_t>(extra)) {
        return false;
    }
    for (int i = 1; i <= extra; ++i) {
        const auto b = static_cast<unsigned char>(s[pos + static_cast<std::size_t>(i)]);
        if ((b & 0xC0) != 0x80) {
            return false;
        }
        cp = (cp << 6) | (b & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        return false;
    }
    pos += static_cast<std::size_t>(extra) + 1;
    return true;
}

} // namespace

void appendUtf8(std::string& out, char32_t cp)
{
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

std::string EncodeError::message() const
{
    if (invalidUtf8) {
        return "Текстът не е в кодировка UTF-8 (позиция " + std::to_string(firstPosition) + ").";
    }
    return "Текстът съдържа знаци, които не могат да бъдат записани: " + characters +
           " (първият е на позиция " + std::to_string(firstPosition) + ").";
}

std::string toUtf8(std::string_view bytes)
{
    std::string out;
    out.reserve(bytes.size() * 2);
    for (char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 0x80) {
            out += c;
        } else {
            appendUtf8(out, kHighHalf[b - 0x80]);
        }
    }
    return out;
}

bool fromUtf8(std::string_view utf8, std::string& out, EncodeError* error)
{
    std::string result;
    result.reserve(utf8.size());
    std::vector<char32_t> bad;
    std::size_t firstBad = 0;
    std::size_t position = 0;
    std::size_t pos = 0;
    while (pos < utf8.size()) {
        ++position;
        char32_t cp = 0;
        if (!nextCodePoint(utf8, pos, cp)) {
            if (error) {
                *error = EncodeError{};
                error->invalidUtf8 = true;
                error->firstPosition = position;
            }
            return false;
        }
        const int b = byteFor(cp);
        if (b < 0) {
            if (bad.empty()) {
                firstBad = position;
            }
            if (std::find(bad.begin(), bad.end(), cp) == bad.end()) {
                bad.push_back(cp);
            }
            continue;
        }
        result += static_cast<char>(b);
    }
    if (!bad.empty()) {
        if (error) {
            *error = EncodeError{};
            for (char32_t cp : bad) {
                if (!error->characters.empty()) {
                    error->characters += ' ';
                }
                error->characters += "\xE2\x80\x9E"; // „
                appendUtf8(error->characters, cp);
                error->characters += "\xE2\x80\x9C"; // “
            }
            error->firstPosition = firstBad;
        }
        return false;
    }
    out = std::move(result);
    return true;
}

std::string fromUtf8OrThrow(std::string_view utf8)
{
    std::string out;
    EncodeError error;
    if (!fromUtf8(utf8, out, &error)) {
        throw std::invalid_argument(error.message());
    }
    return out;
}

std::string fromUtf16(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t cp = text[i];
        // A surrogate pair is one character outside the code page: it becomes one '?'.
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] <= 0xDFFF) {
            ++i;
            cp = 0x10000;
        }
        const int b = byteFor(cp);
        out += b < 0 ? '?' : static_cast<char>(b);
    }
    return out;
}

} // namespace finora::cp1251
