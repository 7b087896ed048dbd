#include "core/model/id_index.h"

#include <algorithm>
#include <bit>
#include <random>
#include <utility>

namespace finora {
namespace {

// Longer probe chains than this mean the ids are not the sequence a ledger hands out.
constexpr std::size_t kLongestExpectedProbe = 64;

} // namespace

std::size_t IdIndex::slotOf(std::int32_t key) const
{
    const auto k = static_cast<std::uint32_t>(key);
    if (!m_scrambled) {
        return static_cast<std::size_t>(k) & (m_entries.size() - 1);
    }
    // The 64-bit finaliser of MurmurHash3: every key bit reaches every slot bit.
    std::uint64_t h = k ^ m_seed;
    h ^= h >> 33;
    h *= 0xFF51AFD7ED558CCDULL;
    h ^= h >> 33;
    h *= 0xC4CEB9FE1A85EC53ULL;
    h ^= h >> 33;
    return static_cast<std::size_t>(h) & (m_entries.size() - 1);
}

std::size_t IdIndex::distance(std::size_t slot) const
{
    return (slot - slotOf(m_entries[slot].key)) & (m_entries.size() - 1);
}

const IdIndex::Entry* IdIndex::find(std::int32_t key) const
{
    if (m_size == 0) {
        return nullptr;
    }
    const std::size_t mask = m_entries.size() - 1;
    // Robin Hood order: once we are further from home than the entry we look at, the key would
    // have taken that slot, so it is not in the table.
    for (std::size_t i = slotOf(key), d = 0;; i = (i + 1) & mask, ++d) {
        const Entry& e = m_entries[i];
        if (e.first == kEmpty || distance(i) < d) {
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
    if (Entry* existing = find(key)) {
        return *existing;
    }
    if ((m_size + 1) * 2 > m_entries.size()) {
        grow((m_size + 1) * 2);
    }
    const std::size_t mask = m_entries.size() - 1;
    std::size_t i = slotOf(key);
    std::size_t d = 0;
    // Walk to the first slot that is empty or whose entry is closer to its home than we are.
    while (m_entries[i].first != kEmpty && distance(i) >= d) {
        i = (i + 1) & mask;
        ++d;
    }
    if (d > kLongestExpectedProbe && !m_scrambled) {
        scramble();
        return findOrInsert(key);
    }
    // Take the slot; whatever sat there moves on to the next slot that is empty or holds an
    // entry nearer its home, and so on, which keeps every run of slots ordered by home.
    const std::size_t placed = i;
    Entry carried{key, kPending, kPending};
    for (;;) {
        if (m_entries[i].first == kEmpty) {
            m_entries[i] = carried;
            break;
        }
        std::swap(carried, m_entries[i]);
        std::size_t carriedDistance = (i - slotOf(carried.key)) & mask;
        do {
            i = (i + 1) & mask;
            ++carriedDistance;
        } while (m_entries[i].first != kEmpty && distance(i) >= carriedDistance);
    }
    ++m_size;
    return m_entries[placed];
}

void IdIndex::erase(std::int32_t key)
{
    Entry* found = find(key);
    if (!found) {
        return;
    }
    // Backward shift: pull the following entries one slot back until one is at its home (or
    // the slot is empty). For a ledger's sequential ids that is the very next slot.
    const std::size_t mask = m_entries.size() - 1;
    auto hole = static_cast<std::size_t>(found - m_entries.data());
    for (std::size_t i = (hole + 1) & mask;; i = (i + 1) & mask) {
        if (m_entries[i].first == kEmpty || distance(i) == 0) {
            break;
        }
        m_entries[hole] = m_entries[i];
        hole = i;
    }
    m_entries[hole] = Entry{};
    --m_size;
}

void IdIndex::clear()
{
    m_entries.clear();
    m_entries.shrink_to_fit();
    m_size = 0;
    m_scrambled = false;
}

void IdIndex::reset()
{
    std::fill(m_entries.begin(), m_entries.end(), Entry{});
    m_size = 0;
}

void IdIndex::reserve(std::size_t count)
{
    if (count * 2 > m_entries.size()) {
        grow(count * 2);
    }
}

void IdIndex::grow(std::size_t minimumCapacity)
{
    rehash(std::bit_ceil(std::max<std::size_t>(minimumCapacity, 16)));
}

void IdIndex::scramble()
{
    std::random_device device;
    m_seed = (static_cast<std::uint64_t>(device()) << 32) | device();
    m_scrambled = true;
    rehash(m_entries.size());
}

void IdIndex::rehash(std::size_t capacity)
{
    std::vector<Entry> old(capacity);
    old.swap(m_entries);
    m_size = 0;
    for (const Entry& e : old) {
        if (e.first != kEmpty) {
            findOrInsert(e.key) = e;
        }
    }
}

} // namespace finora
