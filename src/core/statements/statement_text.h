#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Small pieces every statement reader needs: decoding the file's bytes, amounts, dates, lines.
namespace finora::statement_text {

enum class Encoding { Utf8, Windows1251, Windows1252, Latin1 };

// Decodes to UTF-8. A UTF-8 byte sequence that is not valid becomes U+FFFD, so a damaged letter
// reaches the preview as something it can name instead of breaking the whole file.
std::string toUtf8(std::string_view bytes, Encoding encoding);
bool isValidUtf8(std::string_view bytes);
// UTF-8 when the bytes are valid UTF-8 (or start with its BOM); else Windows-1251 when the letters
// above ASCII come in runs, as Cyrillic words do, and Windows-1252 when they stand alone among
// Latin letters, as accents do.
Encoding guessEncoding(std::string_view bytes);
std::string_view withoutBom(std::string_view bytes);

std::string_view trim(std::string_view text);
// Whitespace runs (line breaks included) become one blank; the ends are trimmed.
std::string collapseBlanks(std::string_view text);
// ASCII and Cyrillic capitals of UTF-8 text to small letters, for matching names.
std::string foldUtf8(std::string_view text);
bool startsWithNoCase(std::string_view text, std::string_view prefix);

// Splits at CR, LF or CRLF; the line ends are not kept.
std::vector<std::string_view> splitLines(std::string_view text);

// A money amount as decimal text, optionally signed: digits, one decimal mark and, when given,
// a thousands separator (blanks are always allowed between groups). More than two decimals are
// rounded half away from zero. Nullopt when the text is not such a number or too large.
std::optional<std::int64_t> parseAmount(std::string_view text, char decimalMark,
                                        char thousandsSeparator = 0);

bool isValidDate(int year, int month, int day);
// A date written as YYYYMMDD or YYYY-MM-DD at the start of the text; what follows (a time, a zone)
// is ignored: a booking reads as the calendar day the bank wrote.
bool parseIsoDate(std::string_view text, int& year, int& month, int& day);

} // namespace finora::statement_text
