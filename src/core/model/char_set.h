#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace finora {

// A set of byte values, one bit each, kept as eight 32-bit words (byte c is bit c % 32 of word
// c / 32). Used where texts are split at any of a set of separator bytes.
class CharSet {
public:
    CharSet() = default;
    static CharSet fromString(std::string_view bytes);

    // Both throw std::out_of_range("invalid bitset<N> position") for a position outside 0..255.
    void set(int position, bool value = true);
    bool test(int position) const;

    bool contains(unsigned char byte) const { return (m_words[byte / 32] >> (byte % 32)) & 1U; }
    const std::array<std::uint32_t, 8>& words() const { return m_words; }

private:
    std::array<std::uint32_t, 8> m_words{};
};

} // namespace finora
