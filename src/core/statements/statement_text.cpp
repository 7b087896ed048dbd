#include "core/statements/statement_text.h"

#include "core/text/cp1251.h"

#include <array>
#include <cstddef>
#include <limits>

namespace finora::statement_text {

namespace {

// Windows-1252 differs from Latin-1 only in 0x80..0x9F; the five unused bytes keep their C1 code.
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The length of the valid UTF-8 sequence at `i`, or 0.
std::size_t utf8SequenceAt(std::string_view s, std::size_t i)
{
    const auto b = static_cast<unsigned char>(s[i]);
    if (b < 0x80) {
        return 1;
    }
    std::size_t n = 0;
    char32_t min = 0;
    if ((b & 0xE0) == 0xC0) {
        n = 2;
        min = 0x80;
    } else if ((b & 0xF0) == 0xE0) {
        n = 3;
        min = 0x800;
    } else if ((b & 0xF8) == 0xF0) {
        n = 4;
        min = 0x10000;
    } else {
        return 0;
    }
    if (i + n > s.size()) {
        return 0;
    }
    char32_t c = b & (0x7F >> n);
    for (std::size_t k = 1; k < n; ++k) {
        const auto cont = static_cast<unsigned char>(s[i + k]);
        if ((cont & 0xC0) != 0x80) {
            return 0;
        }
        c = (c << 6) | (cont & 0x3F);
    }
    if (c < min || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
        return 0;
    }
    return n;
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}

} // namespace

std::string_view withoutBom(std::string_view bytes)
{
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") {
        bytes.remove_prefix(3);
    }
    return bytes;
}

bool isValidUtf8(std::string_view bytes)
{
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t n = utf8SequenceAt(bytes, i);
        if (n == 0) {
            return false;
        }
        i += n;
    }
    return true;
}

Encoding guessEncoding(std::string_view bytes)
{
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF" || isValidUtf8(bytes)) {
        return Encoding::Utf8;
    }
    std::size_t high = 0;
    std::size_t inRuns = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (static_cast<unsigned char>(bytes[i]) < 0x80) {
            continue;
        }
        ++high;
        const bool before = i > 0 && static_cast<unsigned char>(bytes[i - 1]) >= 0x80;
        const bool after = i + 1 < bytes.size() && static_cast<unsigned char>(bytes[i + 1]) >= 0x80;
        inRuns += before || after ? 1 : 0;
    }
    return inRuns * 2 >= high ? Encoding::Windows1251 : Encoding::Windows1252;
}

std::string toUtf8(std::string_view bytes, Encoding encoding)
{
    std::string out;
    out.reserve(bytes.size());
    switch (encoding) {
    case Encoding::Windows1251:
        return cp1251::toUtf8(bytes);
    case Encoding::Windows1252:
    case Encoding::Latin1:
        for (const char ch : bytes) {
            const auto b = static_cast<unsigned char>(ch);
            const bool high = encoding == Encoding::Windows1252 && b >= 0x80 && b < 0xA0;
            cp1251::appendUtf8(out, high ? kCp1252High[b - 0x80] : b);
        }
        return out;
    case Encoding::Utf8:
        break;
    }
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t n = utf8SequenceAt(bytes, i);
        if (n == 0) {
            cp1251::appendUtf8(out, 0xFFFD);
            ++i;
        } else {
            out.append(bytes.substr(i, n));
            i += n;
        }
    }
    return out;
}

std::string_view trim(std::string_view text)
{
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    // A no-break space (U+00A0) is how some banks pad their columns.
    while (text.substr(0, 2) == "\xC2\xA0") {
        text = trim(text.substr(2));
    }
    while (text.size() >= 2 && text.substr(text.size() - 2) == "\xC2\xA0") {
        text = trim(text.substr(0, text.size() - 2));
    }
    return text;
}

std::string collapseBlanks(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    bool pending = false;
    for (const char c : trim(text)) {
        if (isBlank(c)) {
            pending = true;
            continue;
        }
        if (pending) {
            out += ' ';
            pending = false;
        }
        out += c;
    }
    return out;
}

std::string foldUtf8(std::string_view text)
{
    std::string out(text);
    for (std::size_t i = 0; i < out.size(); ++i) {
        auto b = static_cast<unsigned char>(out[i]);
        if (b >= 'A' && b <= 'Z') {
            out[i] = static_cast<char>(b + 32);
        } else if (i + 1 < out.size() && (b == 0xD0 || b == 0xD1)) {
            // UTF-8 Cyrillic: А..П (D0 90..9F) → а..п (D0 B0..BF), Р..Я (D0 A0..AF) → р..я (D1
            // 80..8F), Ѐ..Џ (D0 80..8F) → ѐ..џ (D1 90..9F).
            const auto c = static_cast<unsigned char>(out[i + 1]);
            if (b == 0xD0 && c >= 0x90 && c <= 0x9F) {
                out[i + 1] = static_cast<char>(c + 0x20);
            } else if (b == 0xD0 && c >= 0xA0 && c <= 0xAF) {
                out[i] = static_cast<char>(0xD1);
                out[i + 1] = static_cast<char>(c - 0x20);
            } else if (b == 0xD0 && c >= 0x80 && c <= 0x8F) {
                out[i] = static_cast<char>(0xD1);
                out[i + 1] = static_cast<char>(c + 0x10);
            }
            ++i;
        }
    }
    return out;
}

bool startsWithNoCase(std::string_view text, std::string_view prefix)
{
    return text.size() >= prefix.size() &&
           foldUtf8(text.substr(0, prefix.size())) == foldUtf8(prefix);
}

std::vector<std::string_view> splitLines(std::string_view text)
{
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' || text[i] == '\n') {
            lines.push_back(text.substr(start, i - start));
            if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
                ++i;
            }
            start = i + 1;
        }
    }
    if (start < text.size()) {
        lines.push_back(text.substr(start));
    }
    return lines;
}

std::optional<std::int64_t> parseAmount(std::string_view text, char decimalMark,
                                        char thousandsSeparator)
{
    text = trim(text);
    bool negative = false;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        negative = text.front() == '-';
        text = trim(text.substr(1));
    } else if (!text.empty() && text.back() == '-') {
        negative = true;
        text = trim(text.substr(0, text.size() - 1));
    }
    constexpr std::int64_t kLimit = std::numeric_limits<std::int64_t>::max() / 1000;
    std::int64_t whole = 0;
    int decimals = -1;         // digits after the mark seen so far; -1 before the mark
    std::int64_t fraction = 0; // hundredths
    bool roundUp = false;
    bool anyDigit = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c >= '0' && c <= '9') {
            anyDigit = true;
            if (decimals < 0) {
                whole = whole * 10 + (c - '0');
                if (whole > kLimit) {
                    return std::nullopt;
                }
            } else if (decimals < 2) {
                fraction = fraction * 10 + (c - '0');
                ++decimals;
            } else if (decimals == 2) {
                roundUp = c >= '5';
                ++decimals;
            }
        } else if (c == decimalMark && decimals < 0) {
            decimals = 0;
        } else if (decimals < 0 && anyDigit &&
                   (c == ' ' || (thousandsSeparator != 0 && c == thousandsSeparator))) {
            continue;
        } else if (decimals < 0 && anyDigit && text.substr(i, 2) == "\xC2\xA0") {
            ++i;
        } else {
            return std::nullopt;
        }
    }
    if (!anyDigit) {
        return std::nullopt;
    }
    for (int d = decimals < 0 ? 0 : decimals; d < 2; ++d) {
        fraction *= 10;
    }
    const std::int64_t cents = whole * 100 + fraction + (roundUp ? 1 : 0);
    return negative ? -cents : cents;
}

bool isValidDate(int year, int month, int day)
{
    if (year < 1900 || year > 2999 || month < 1 || month > 12 || day < 1) {
        return false;
    }
    static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return day <= kDays[static_cast<std::size_t>(month - 1)] + (month == 2 && leap ? 1 : 0);
}

bool parseIsoDate(std::string_view text, int& year, int& month, int& day)
{
    text = trim(text);
    auto number = [&](std::size_t pos, std::size_t len, int& out) {
        if (pos + len > text.size()) {
            return false;
        }
        out = 0;
        for (std::size_t i = pos; i < pos + len; ++i) {
            if (text[i] < '0' || text[i] > '9') {
                return false;
            }
            out = out * 10 + (text[i] - '0');
        }
        return true;
    };
    const bool dashed = text.size() >= 10 && text[4] == '-' && text[7] == '-';
    const bool ok = dashed ? number(0, 4, year) && number(5, 2, month) && number(8, 2, day)
                           : number(0, 4, year) && number(4, 2, month) && number(6, 2, day);
    return ok && isValidDate(year, month, day);
}

} // namespace finora::statement_text
