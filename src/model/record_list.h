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
// amortised linear. Appending or removing invalidates iterators and pointers.
template <class T>
class RecordList {
    static constexpr std::int32_t kNoNext = -1;
    static constexpr std::int32_t kRemoved = -2;

    struct Slot {
        T value;
        std::int32_t nextSameId; // next occurrence of the same id, kNoNext, or kRemoved
    };

public:
    class const_iterator {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;

        const_iterator() = default;
        reference operator*() const { return (*m_slots)[m_pos].value; }
        pointer operator->() const { return &(*m_slots)[m_pos].value; }
        const_iterator& operator++()
        {
            do {
                ++m_pos;
            } while (m_pos < m_slots->size() && (*m_slots)[m_pos].nextSameId == kRemoved);
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
            } while ((*m_slots)[m_pos].nextSameId == kRemoved);
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
        const_iterator(const std::vector<Slot>* slots, std::size_t pos) : m_slots(slots), m_pos(pos)
        {
        }
        const std::vector<Slot>* m_slots = nullptr;
        std::size_t m_pos = 0;
    };
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;

    const_iterator begin() const
    {
        std::size_t pos = 0;
        while (pos < m_slots.size() && m_slots[pos].nextSameId == kRemoved) {
            ++pos;
        }
        return const_iterator(&m_slots, pos);
    }
    const_iterator end() const { return const_iterator(&m_slots, m_slots.size()); }
    const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }

    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

    const T* find(std::int32_t id) const
    {
        const IdIndex::Entry* e = m_index.find(id);
        return e ? &m_slots[static_cast<std::size_t>(e->first)].value : nullptr;
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
        const auto pos = static_cast<std::int32_t>(m_slots.size());
        const std::int32_t id = value.id();
        m_slots.push_back(Slot{std::move(value), kNoNext});
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
        Slot& slot = m_slots[static_cast<std::size_t>(e->first)];
        if (slot.nextSameId == kNoNext) {
            m_index.erase(id);
        } else {
            e->first = slot.nextSameId;
        }
        slot.value = T{};
        slot.nextSameId = kRemoved;
        --m_size;
        const std::size_t holes = m_slots.size() - m_size;
        if (holes > m_size && holes >= 64) {
            compact();
        }
        return true;
    }

    void clear()
    {
        m_slots.clear();
        m_slots.shrink_to_fit();
        m_index.clear();
        m_size = 0;
    }

    void reserve(std::size_t count)
    {
        m_slots.reserve(count);
        m_index.reserve(count);
    }

private:
    void link(std::int32_t id, std::int32_t pos)
    {
        IdIndex::Entry& e = m_index.findOrInsert(id);
        if (e.first == IdIndex::kEmpty) {
            e.first = pos;
        } else {
            m_slots[static_cast<std::size_t>(e.last)].nextSameId = pos;
        }
        e.last = pos;
    }

    void compact()
    {
        std::vector<Slot> kept;
        kept.reserve(m_size);
        for (Slot& slot : m_slots) {
            if (slot.nextSameId != kRemoved) {
                kept.push_back(Slot{std::move(slot.value), kNoNext});
            }
        }
        m_slots = std::move(kept);
        m_index.clear();
        m_index.reserve(m_slots.size());
        for (std::size_t pos = 0; pos < m_slots.size(); ++pos) {
            link(m_slots[pos].value.id(), static_cast<std::int32_t>(pos));
        }
    }

    std::vector<Slot> m_slots;
    IdIndex m_index;
    std::size_t m_size = 0;
};

} // namespace finora
