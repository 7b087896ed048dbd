#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace finora {

// Maps a record id to the list positions of its first and last occurrence. Open addressing
// with linear probing over a flat array: a million entries cost 12 bytes each at half load and
// no allocation per record, which keeps opening large ledgers close to the speed of reading them.
class IdIndex {
public:
    struct Entry {
        std::int32_t key = 0;
        std::int32_t first = kEmpty;
        std::int32_t last = kEmpty;
    };
    static constexpr std::int32_t kEmpty = -1;

    Entry* find(std::int32_t key);
    const Entry* find(std::int32_t key) const;
    // The entry for `key`, created with first == last == kEmpty when it is new.
    Entry& findOrInsert(std::int32_t key);
    void erase(std::int32_t key);
    void clear();
    void reserve(std::size_t count);
    std::size_t size() const { return m_size; }

private:
    std::size_t slotOf(std::int32_t key) const;
    void grow(std::size_t minimumCapacity);

    std::vector<Entry> m_entries; // capacity is a power of two or zero
    std::size_t m_size = 0;
    unsigned m_shift = 32;
};

} // namespace finora
