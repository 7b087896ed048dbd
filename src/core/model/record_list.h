#pragma once

#include "core/model/id_index.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace finora {

// Records in insertion order with "first match wins" lookups by id that cost O(1).
//
// Removal only ever takes the first record with a given id (that is what deleting by id means
// when a file carries duplicate ids), so each id keeps a chain of its occurrences in order and a
// removal just advances the chain head. Removed records leave a hole that iteration skips; the
// holes are squeezed out once they outnumber the records, which keeps both removal and iteration
// amortised linear, and bounds the memory held by removed records to that of the live ones.
// Appending or removing invalidates iterators and pointers.
//
// Every record also carries a key that grows in list order and survives compaction: the place of
// a record that was taken out, so undoing a change can put it back where it was, among whatever
// records are there by then.
template <class T> class RecordList {
    static constexpr std::int32_t kNoNext = -1;
    static constexpr std::int32_t kRemoved = -2;

public:
    using Key = std::uint64_t;
    // A record out of the list, with the key of its place.
    struct Taken {
        Key key = 0;
        T value;
    };

    class const_iterator {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;

        const_iterator() = default;
        reference operator*() const { return (*m_records)[m_pos]; }
        pointer operator->() const { return &(*m_records)[m_pos]; }
        const_iterator& operator++()
        {
            do {
                ++m_pos;
            } while (m_pos < m_links->size() && (*m_links)[m_pos] == kRemoved);
            return *this;
        }
        const_iterator operator++(int)
        {
            auto copy = *this;
            ++*this;
            return copy;
        }
        const_iterator& operator--()
        {
            do {
                --m_pos;
            } while ((*m_links)[m_pos] == kRemoved);
            return *this;
        }
        const_iterator operator--(int)
        {
            auto copy = *this;
            --*this;
            return copy;
        }
        bool operator==(const const_iterator& other) const { return m_pos == other.m_pos; }

    private:
        friend class RecordList;
        const_iterator(const RecordList* list, std::size_t pos)
            : m_records(&list->m_records), m_links(&list->m_links), m_pos(pos)
        {}
        const std::vector<T>* m_records = nullptr;
        const std::vector<std::int32_t>* m_links = nullptr;
        std::size_t m_pos = 0;
    };
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;

    const_iterator begin() const
    {
        std::size_t pos = 0;
        while (pos < m_links.size() && m_links[pos] == kRemoved) {
            ++pos;
        }
        return const_iterator(this, pos);
    }
    const_iterator end() const { return const_iterator(this, m_links.size()); }
    const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }

    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

    const T* find(std::int32_t id) const
    {
        const IdIndex::Entry* e = m_index.find(id);
        return e ? &m_records[static_cast<std::size_t>(e->first)] : nullptr;
    }
    // The caller may change anything but the id.
    T* findMutable(std::int32_t id) { return const_cast<T*>(std::as_const(*this).find(id)); }

    template <class Predicate> const T* findIf(Predicate predicate) const
    {
        for (const T& value : *this) {
            if (predicate(value)) {
                return &value;
            }
        }
        return nullptr;
    }

    // Returns the key of the new record's place.
    Key append(T value)
    {
        const Key key = m_nextKey++;
        pushBack(key, std::move(value));
        return key;
    }

    // Removes the first record with the id; false when there is none.
    bool removeFirst(std::int32_t id)
    {
        IdIndex::Entry* e = m_index.find(id);
        if (!e) {
            return false;
        }
        std::int32_t& link = m_links[static_cast<std::size_t>(e->first)];
        if (link == kNoNext) {
            m_index.erase(id);
        } else {
            e->first = link;
        }
        // Only the small link array is touched: the record itself is released by the next
        // compaction, which walks the records in order, where touching it here would cost a
        // cache miss per removal in a large list. Its key stays, to keep the keys in order.
        link = kRemoved;
        --m_size;
        const std::size_t holes = m_links.size() - m_size;
        if (holes > m_size && holes >= 64) {
            compact();
        }
        return true;
    }

    // The key of a record of this list, from a reference that find() gave.
    Key keyOf(const T& record) const
    {
        return m_keys[static_cast<std::size_t>(&record - m_records.data())];
    }

    // Like removeFirst, but hands the record out with its key.
    std::optional<Taken> takeFirst(std::int32_t id)
    {
        const IdIndex::Entry* e = m_index.find(id);
        if (!e) {
            return std::nullopt;
        }
        return takeSlot(static_cast<std::size_t>(e->first));
    }

    // The record with this id at the place of this key, or null.
    T* findByKey(std::int32_t id, Key key)
    {
        const std::ptrdiff_t slot = slotOf(id, key);
        return slot < 0 ? nullptr : &m_records[static_cast<std::size_t>(slot)];
    }

    std::optional<Taken> takeByKey(std::int32_t id, Key key)
    {
        const std::ptrdiff_t slot = slotOf(id, key);
        if (slot < 0) {
            return std::nullopt;
        }
        return takeSlot(static_cast<std::size_t>(slot));
    }

    // Puts records back at the places their keys name, in any order; no key may be in the list.
    // Where their holes are still there (or the keys lie past the end) that costs a step per
    // record; otherwise the list is rebuilt once, merging them in.
    void restore(const std::vector<Key>& keys, std::vector<T> values)
    {
        const std::vector<std::size_t> order = ascending(keys);
        std::vector<std::size_t> places;
        places.reserve(order.size());
        std::size_t from = 0;
        for (const std::size_t i : order) {
            from = lowerBound(keys[i], from);
            const bool hole =
                from < m_keys.size() && m_keys[from] == keys[i] && m_links[from] == kRemoved;
            if (from < m_keys.size() && !hole) {
                mergeIn(keys, values, order);
                return;
            }
            places.push_back(from);
        }
        const std::size_t end = m_keys.size();
        for (std::size_t n = 0; n < order.size(); ++n) {
            const std::size_t i = order[n];
            if (places[n] >= end) {
                pushBack(keys[i], std::move(values[i]));
                continue;
            }
            const std::size_t slot = places[n];
            const std::int32_t id = values[i].id();
            m_records[slot] = std::move(values[i]);
            m_links[slot] = kNoNext;
            linkInOrder(id, slot);
            ++m_size;
            m_nextKey = std::max(m_nextKey, keys[i] + 1);
        }
    }

    void clear()
    {
        m_records.clear();
        m_records.shrink_to_fit();
        m_keys.clear();
        m_keys.shrink_to_fit();
        m_links.clear();
        m_links.shrink_to_fit();
        m_index.clear();
        m_size = 0;
    }

    // Room for `count` records: until the list holds that many, appending moves nothing.
    void reserve(std::size_t count)
    {
        const std::size_t holes = m_records.size() - m_size;
        m_records.reserve(count + holes);
        m_keys.reserve(count + holes);
        m_links.reserve(count + holes);
        m_index.reserve(count);
    }

private:
    void pushBack(Key key, T value)
    {
        const auto pos = static_cast<std::int32_t>(m_records.size());
        const std::int32_t id = value.id();
        m_records.push_back(std::move(value));
        m_keys.push_back(key);
        m_links.push_back(kNoNext);
        link(id, pos);
        ++m_size;
        m_nextKey = std::max(m_nextKey, key + 1);
    }

    std::ptrdiff_t slotOf(std::int32_t id, Key key) const
    {
        const IdIndex::Entry* e = m_index.find(id);
        for (std::int32_t pos = e ? e->first : kNoNext; pos != kNoNext;
             pos = m_links[static_cast<std::size_t>(pos)]) {
            if (m_keys[static_cast<std::size_t>(pos)] == key) {
                return pos;
            }
        }
        return -1;
    }

    // The first slot at or after `from` whose key is not below `key`; galloping, since the keys
    // put back are sorted and usually near one another.
    std::size_t lowerBound(Key key, std::size_t from) const
    {
        std::size_t low = from;
        std::size_t step = 1;
        std::size_t high = from;
        while (high < m_keys.size() && m_keys[high] < key) {
            low = high + 1;
            high = from + step;
            step *= 2;
        }
        high = std::min(high, m_keys.size());
        const auto begin = m_keys.begin() + static_cast<std::ptrdiff_t>(low);
        const auto end = m_keys.begin() + static_cast<std::ptrdiff_t>(high);
        return static_cast<std::size_t>(std::lower_bound(begin, end, key) - m_keys.begin());
    }

    // Unlinks a live slot and hands its record out. A slot at the end goes at once, with the
    // holes before it, so undoing an append leaves nothing behind.
    Taken takeSlot(std::size_t slot)
    {
        const std::int32_t id = m_records[slot].id();
        IdIndex::Entry* e = m_index.find(id);
        const auto pos = static_cast<std::int32_t>(slot);
        if (e->first == pos) {
            if (m_links[slot] == kNoNext) {
                m_index.erase(id);
            } else {
                e->first = m_links[slot];
            }
        } else {
            std::int32_t before = e->first;
            while (m_links[static_cast<std::size_t>(before)] != pos) {
                before = m_links[static_cast<std::size_t>(before)];
            }
            m_links[static_cast<std::size_t>(before)] = m_links[slot];
            if (e->last == pos) {
                e->last = before;
            }
        }
        Taken taken{m_keys[slot], std::move(m_records[slot])};
        m_links[slot] = kRemoved;
        --m_size;
        while (!m_links.empty() && m_links.back() == kRemoved) {
            m_records.pop_back();
            m_keys.pop_back();
            m_links.pop_back();
        }
        const std::size_t holes = m_links.size() - m_size;
        if (holes > m_size && holes >= 64) {
            compact();
        }
        return taken;
    }

    // Links a slot into its id's chain where list order puts it.
    void linkInOrder(std::int32_t id, std::size_t slot)
    {
        const auto pos = static_cast<std::int32_t>(slot);
        IdIndex::Entry& e = m_index.findOrInsert(id);
        if (e.first == IdIndex::kPending) {
            e.first = e.last = pos;
        } else if (pos < e.first) {
            m_links[slot] = e.first;
            e.first = pos;
        } else if (pos > e.last) {
            m_links[static_cast<std::size_t>(e.last)] = pos;
            e.last = pos;
        } else {
            // Somewhere inside the chain: after the last of its slots that comes before it.
            std::int32_t before = e.first;
            while (m_links[static_cast<std::size_t>(before)] < pos) {
                before = m_links[static_cast<std::size_t>(before)];
            }
            m_links[slot] = m_links[static_cast<std::size_t>(before)];
            m_links[static_cast<std::size_t>(before)] = pos;
        }
    }

    // The positions of `keys` in ascending order of key. The records of one command come in
    // list order or against it, so the records themselves are never sorted, only looked up.
    static std::vector<std::size_t> ascending(const std::vector<Key>& keys)
    {
        std::vector<std::size_t> order(keys.size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            order[i] = i;
        }
        if (std::is_sorted(keys.rbegin(), keys.rend())) {
            std::reverse(order.begin(), order.end());
        } else if (!std::is_sorted(keys.begin(), keys.end())) {
            std::sort(order.begin(), order.end(),
                      [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
        }
        return order;
    }

    // The live records and the records given, in the order of their keys, become a list without
    // holes.
    void mergeIn(const std::vector<Key>& keys, std::vector<T>& values,
                 const std::vector<std::size_t>& order)
    {
        std::vector<T> merged;
        std::vector<Key> mergedKeys;
        merged.reserve(m_size + values.size());
        mergedKeys.reserve(m_size + values.size());
        auto next = order.begin();
        const auto takeGiven = [&] {
            merged.push_back(std::move(values[*next]));
            mergedKeys.push_back(keys[*next]);
            ++next;
        };
        for (std::size_t pos = 0; pos < m_records.size(); ++pos) {
            if (m_links[pos] == kRemoved) {
                continue;
            }
            while (next != order.end() && keys[*next] < m_keys[pos]) {
                takeGiven();
            }
            merged.push_back(std::move(m_records[pos]));
            mergedKeys.push_back(m_keys[pos]);
        }
        while (next != order.end()) {
            takeGiven();
        }
        if (!mergedKeys.empty()) {
            m_nextKey = std::max(m_nextKey, mergedKeys.back() + 1);
        }
        m_records = std::move(merged);
        m_keys = std::move(mergedKeys);
        relinkAll();
    }

    void relinkAll()
    {
        m_size = m_records.size();
        m_links.assign(m_size, kNoNext);
        m_index.reset();
        for (std::size_t pos = 0; pos < m_size; ++pos) {
            link(m_records[pos].id(), static_cast<std::int32_t>(pos));
        }
    }

    void link(std::int32_t id, std::int32_t pos)
    {
        IdIndex::Entry& e = m_index.findOrInsert(id);
        if (e.first == IdIndex::kPending) {
            e.first = pos;
        } else {
            m_links[static_cast<std::size_t>(e.last)] = pos;
        }
        e.last = pos;
    }

    // Moves the records down over the holes in place: no new memory, one pass in order.
    void compact()
    {
        std::size_t kept = 0;
        for (std::size_t pos = 0; pos < m_records.size(); ++pos) {
            if (m_links[pos] != kRemoved) {
                if (kept != pos) {
                    m_records[kept] = std::move(m_records[pos]);
                    m_keys[kept] = m_keys[pos];
                }
                ++kept;
            }
        }
        m_records.resize(kept);
        m_keys.resize(kept);
        relinkAll();
        if (m_records.capacity() > 4 * kept + 1024) { // most of the list is gone: give it back
            m_records.shrink_to_fit();
            m_keys.shrink_to_fit();
            m_links.shrink_to_fit();
        }
    }

    std::vector<T> m_records;
    std::vector<Key> m_keys;           // per record, ascending
    std::vector<std::int32_t> m_links; // per record: next record with its id, kNoNext, or kRemoved
    IdIndex m_index;
    std::size_t m_size = 0;
    Key m_nextKey = 0;
};

} // namespace finora
