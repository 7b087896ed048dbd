#include "core/text/case_fold.h"

#include <array>

namespace finora {
namespace {

constexpr std::array<unsigned char, 256> makeFoldTable()
{
    std::array<unsigned char, 256> table{};
    for (int i = 0; i < 256; ++i) {
        table[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i);
    }
    for (int c = 'A'; c <= 'Z'; ++c) {
        table[static_cast<std::size_t>(c)] = static_cast<unsigned char>(c + 32);
    }
    for (int c = 0xC0; c <= 0xDF; ++c) { // А..Я
        table[static_cast<std::size_t>(c)] = static_cast<unsigned char>(c + 32);
    }
    // Capitals outside the main block, each with its small letter.
    constexpr std::array<std::array<unsigned char, 2>, 14> pairs = {{
        {0x80, 0x90}, // Ђ ђ
        {0x81, 0x83}, // Ѓ ѓ
        {0x8A, 0x9A}, // Љ љ
        {0x8C, 0x9C}, // Њ њ
        {0x8D, 0x9D}, // Ќ ќ
        {0x8E, 0x9E}, // Ћ ћ
        {0x8F, 0x9F}, // Џ џ
        {0xA1, 0xA2}, // Ў ў
        {0xA3, 0xBC}, // Ј ј
        {0xA5, 0xB4}, // Ґ ґ
        {0xA8, 0xB8}, // Ё ё
        {0xAA, 0xBA}, // Є є
        {0xAF, 0xBF}, // Ї ї
        {0xB2, 0xB3}, // І і
    }};
    for (const auto& p : pairs) {
        table[p[0]] = p[1];
    }
    table[0xBD] = 0xBE; // Ѕ ѕ
    return table;
}

constexpr std::array<unsigned char, 256> kFold = makeFoldTable();

constexpr std::array<unsigned char, 256> makeUpperTable()
{
    std::array<unsigned char, 256> table{};
    for (int i = 0; i < 256; ++i) {
        table[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i);
    }
    for (int i = 0; i < 256; ++i) {
        if (kFold[static_cast<std::size_t>(i)] != i) {
            table[kFold[static_cast<std::size_t>(i)]] = static_cast<unsigned char>(i);
        }
    }
    return table;
}

constexpr std::array<unsigned char, 256> kUpper = makeUpperTable();

std::string mapBytes(const std::array<unsigned char, 256>& table, std::string_view bytes)
{
    std::string out(bytes);
    for (char& c : out) {
        c = static_cast<char>(table[static_cast<unsigned char>(c)]);
    }
    return out;
}

} // namespace

unsigned char foldCase(unsigned char byte)
{
    return kFold[byte];
}

std::string foldCase(std::string_view bytes)
{
    return mapBytes(kFold, bytes);
}

unsigned char upperCase(unsigned char byte)
{
    return kUpper[byte];
}

std::string upperCase(std::string_view bytes)
{
    return mapBytes(kUpper, bytes);
}

} // namespace finora
