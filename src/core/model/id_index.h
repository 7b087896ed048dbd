#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace finora {

// Maps a record id to the list positions of its first and last occurrence. Open addressing
// with linear probing in Robin Hood order over a flat array: a million entries cost 12 bytes
// each at half load and no allocation per record, and every run of slots stays ordered by home
// slot, so lookups of absent ids and removals stop early.
//
// Ledger ids are handed out in sequence, so the table starts by placing each id at its own value
// (modulo the size): a ledger read in id order then fills the table front to back instead of
// missing the cache once per record. Ids crafted to collide would make that quadratic, so the
// first probe chain longer than a few dozen slots switches the table to a strong mixing hash
// keyed with a seed drawn at random for this table, which no file can aim at.
class IdIndex {
public:
    struct Entry {
        std::int32_t key = 0;
        std::int32_t first = kEmpty;
        std::int32_t last = kEmpty;
    };
    static constexpr std::int32_t kEmpty = -1;
    static constexpr std::int32_t kPending = -2;

    Entry* find(std::int32_t key);
    const Entry* find(std::int32_t key) const;
    // The entry for `key`; a new one has first == last == kPending for the caller to fill in.
    Entry& findOrInsert(std::int32_t key);
    void erase(std::int32_t key);
    void clear();
    // Empties the table but keeps its memory, for a rebuild of about the same size.
    void reset();
    void reserve(std::size_t count);
    std::size_t size() const { return m_size; }

private:
    std::size_t slotOf(std::int32_t key) const;
    // How far the entry in `slot` sits from its home slot.
    std::size_t distance(std::size_t slot) const;
    void grow(std::size_t minimumCapacity);
    void rehash(std::size_t capacity);
    void scramble();

    std::vector<Entry> m_entries; // capacity is a power of two or zero
    std::size_t m_size = 0;
    std::uint64_t m_seed = 0;
    bool m_scrambled = false; // false while ids sit at their own value
};

} // namespace finora
