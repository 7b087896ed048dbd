#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace finora {

// Records keep their texts as Windows-1251 bytes, exactly as the ledger file does; these
// conversions are used only where text crosses into or out of the program (widgets, the CLI).
namespace cp1251 {

// Why a UTF-8 text could not be converted: the characters that have no Windows-1251 byte, each
// once and in order, and the 1-based character position of the first of them.
struct EncodeError {
    std::string characters; // UTF-8, separated by blanks
    std::size_t firstPosition = 0;
    bool invalidUtf8 = false;

    // A Bulgarian sentence for the user that names the characters and where they are.
    std::string message() const;
};

// The UTF-8 bytes of one code point, for every decoder of the program's texts.
void appendUtf8(std::string& out, char32_t codePoint);

// Every byte has a character, so decoding never fails.
std::string toUtf8(std::string_view bytes);

// Refuses rather than substitutes: on failure `out` is left unchanged and `error` says why.
bool fromUtf8(std::string_view utf8, std::string& out, EncodeError* error = nullptr);

// For texts the program writes itself and knows to be representable; throws std::invalid_argument
// otherwise, which marks a programming error, not bad input.
std::string fromUtf8OrThrow(std::string_view utf8);

// Text read from a UTF-16 source (the wide-string form of old files). A character without a
// Windows-1251 byte becomes '?', because stored data has to be read whole, whatever it holds.
std::string fromUtf16(std::u16string_view text);

} // namespace cp1251
} // namespace finora
