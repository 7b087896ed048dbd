#include "model/id_index.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace finora {

std::size_t IdIndex::slotOf(std::int32_t key) const
{
    // Fibonacci hashing spreads the dense, sequential ids of a ledger over the table.
    const std::uint32_t h = static_cast<std::uint32_t>(key) * 0x9E3779B9U;
    return m_shift >= 32 ? 0 : static_cast<std::size_t>(h >> m_shift);
}

const IdIndex::Entry* IdIndex::find(std::int32_t key) const
{
    if (m_size == 0) {
        return nullptr;
    }
    const std::size_t mask = m_entries.size() - 1;
    for (std::size_t i = slotOf(key);; i = (i + 1) & mask) {
        const Entry& e = m_entries[i];
        if (e.first == kEmpty) {
            return nullptr;
        }
        if (e.key == key) {
            return &e;
        }
    }
}

IdIndex::Entry* IdIndex::find(std::int32_t key)
{
    return const_cast<Entry*>(std::as_const(*this).find(key));
}

IdIndex::Entry& IdIndex::findOrInsert(std::int32_t key)
{
    if ((m_size + 1) * 2 > m_entries.size()) {
        grow((m_size + 1) * 2);
    }
    const std::size_t mask = m_entries.size() - 1;
    for (std::size_t i = slotOf(key);; i = (i + 1) & mask) {
        Entry& e = m_entries[i];
        if (e.first == kEmpty) {
            e.key = key;
            ++m_size;
            return e;
        }
        if (e.key == key) {
            return e;
        }
    }
}

void IdIndex::erase(std::int32_t key)
{
    Entry* found = find(key);
    if (!found) {
        return;
    }
    // Backward-shift deletion keeps every probe chain unbroken without tombstones.
    const std::size_t mask = m_entries.size() - 1;
    auto hole = static_cast<std::size_t>(found - m_entries.data());
    for (std::size_t i = (hole + 1) & mask;; i = (i + 1) & mask) {
        Entry& e = m_entries[i];
        if (e.first == kEmpty) {
            break;
        }
        const std::size_t home = slotOf(e.key);
        // Move e into the hole when its home does not lie cyclically in (hole, i].
        const bool homeBetween = hole <= i ? (home > hole && home <= i) : (home > hole || home <= i);
        if (!homeBetween) {
            m_entries[hole] = e;
            hole = i;
        }
    }
    m_entries[hole] = Entry{};
    --m_size;
}

void IdIndex::clear()
{
    m_entries.clear();
    m_entries.shrink_to_fit();
    m_size = 0;
    m_shift = 32;
}

void IdIndex::reserve(std::size_t count)
{
    if (count * 2 > m_entries.size()) {
        grow(count * 2);
    }
}

void IdIndex::grow(std::size_t minimumCapacity)
{
    const std::size_t capacity = std::bit_ceil(std::max<std::size_t>(minimumCapacity, 16));
    std::vector<Entry> old(capacity);
    old.swap(m_entries);
    m_shift = 32U - static_cast<unsigned>(std::countr_zero(capacity));
    m_size = 0;
    for (const Entry& e : old) {
        if (e.first != kEmpty) {
            Entry& slot = findOrInsert(e.key);
            slot = e;
        }
    }
}

} // namespace finora
