#pragma once

#include "model/id_index.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

namespace finora {

// Records in insertion order with "first match wins" lookups by id that cost O(1).
//
// Removal only ever takes the first record with a given id (that is what deleting by id means
// when a file carries duplicate ids), so each id keeps a chain of its occurrences in order and a
// removal just advances the chain head. Removed records leave a hole that iteration skips; the
// holes are squeezed out once they outnumber the records, which keeps both removal and iteration
// amortised linear, and bounds the memory held by removed records to that of the live ones. Appending or removing invalidates iterators and pointers.
template <class T>
class RecordList {
    static constexpr std::int32_t kNoNext = -1;
    static constexpr std::int32_t kRemoved = -2;


public:
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
        {
        }
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
    T* findMutable(std::int32_t id)
    {
        return const_cast<T*>(std::as_const(*this).find(id));
    }

    template <class Predicate>
    const T* findIf(Predicate predicate) const
    {
        for (const T& value : *this) {
            if (predicate(value)) {
                return &value;
            }
        }
        return nullptr;
    }

    void append(T value)
    {
        const auto pos = static_cast<std::int32_t>(m_records.size());
        const std::int32_t id = value.id();
        m_records.push_back(std::move(value));
        m_links.push_back(kNoNext);
        link(id, pos);
        ++m_size;
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
        // cache miss per removal in a large list.
        link = kRemoved;
        --m_size;
        const std::size_t holes = m_links.size() - m_size;
        if (holes > m_size && holes >= 64) {
            compact();
        }
        return true;
    }

    void clear()
    {
        m_records.clear();
        m_records.shrink_to_fit();
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
        m_links.reserve(count + holes);
        m_index.reserve(count);
    }

private:
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
                }
                ++kept;
            }
        }
        m_records.resize(kept);
        m_links.assign(kept, kNoNext);
        if (m_records.capacity() > 4 * kept + 1024) { // most of the list is gone: give it back
            m_records.shrink_to_fit();
            m_links.shrink_to_fit();
        }
        m_index.reset();
        for (std::size_t pos = 0; pos < kept; ++pos) {
            link(m_records[pos].id(), static_cast<std::int32_t>(pos));
        }
    }

    std::vector<T> m_records;
    std::vector<std::int32_t> m_links; // per record: next record with its id, kNoNext, or kRemoved
    IdIndex m_index;
    std::size_t m_size = 0;
};

} // namespace finora
