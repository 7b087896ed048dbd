#include "core/model/char_set.h"

#include <stdexcept>

namespace finora {
namespace {

void checkPosition(int position)
{
    if (position < 0 || position > 255) {
        throw std::out_of_range("invalid bitset<N> position");
    }
}

} // namespace

CharSet CharSet::fromString(std::string_view bytes)
{
    CharSet set;
    for (char c : bytes) {
        set.set(static_cast<unsigned char>(c));
    }
    return set;
}

void CharSet::set(int position, bool value)
{
    checkPosition(position);
    const std::uint32_t bit = 1U << (position % 32);
    auto& word = m_words[static_cast<std::size_t>(position / 32)];
    word = value ? (word | bit) : (word & ~bit);
}

bool CharSet::test(int position) const
{
    checkPosition(position);
    return contains(static_cast<unsigned char>(position));
}

} // namespace finora
