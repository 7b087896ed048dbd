#include "core/model/category.h"
#include "core/model/id_index.h"
#include "core/model/record_list.h"

#include <gtest/gtest.h>
#include <random>
#include <unordered_map>
#include <vector>

using namespace finora;

TEST(IdIndex, AgreesWithAReferenceMapUnderRandomInsertsAndErases)
{
    // Few distinct keys in a table that keeps growing and shrinking: long probe chains and
    // wrap-around at the table's end are what backward-shift deletion gets wrong.
    std::mt19937 rng(7);
    IdIndex index;
    std::unordered_map<std::int32_t, std::int32_t> reference;
    for (int step = 0; step < 200000; ++step) {
        const std::int32_t key = step % 3 == 0 ? static_cast<std::int32_t>(rng())
                                               : static_cast<std::int32_t>(rng() % 500) - 250;
        if (rng() % 3 == 0) {
            index.erase(key);
            reference.erase(key);
        } else {
            index.findOrInsert(key).first = step;
            reference[key] = step;
        }
        if (step % 1000 == 0) {
            ASSERT_EQ(index.size(), reference.size());
            for (const auto& [k, v] : reference) {
                const IdIndex::Entry* e = index.find(k);
                ASSERT_NE(e, nullptr) << k;
                ASSERT_EQ(e->first, v);
            }
        }
    }
    for (std::int32_t k = -300; k < 300; ++k) {
        EXPECT_EQ(index.find(k) != nullptr, reference.count(k) == 1) << k;
    }
}

namespace {

std::vector<std::string> names(const RecordList<Category>& list)
{
    std::vector<std::string> out;
    for (const Category& c : list) {
        out.push_back(c.name());
    }
    return out;
}

// After any change, the list's order is the reference's and every lookup finds the first record
// of its id in that order.
void expectSameAs(const RecordList<Category>& list, const std::vector<Category>& reference)
{
    ASSERT_EQ(list.size(), reference.size());
    ASSERT_TRUE(std::equal(list.begin(), list.end(), reference.begin(), reference.end()));
    ASSERT_TRUE(std::equal(list.rbegin(), list.rend(), reference.rbegin(), reference.rend()));
    for (const Category& c : reference) {
        const auto first = std::find_if(reference.begin(), reference.end(),
                                        [&](const Category& x) { return x.id() == c.id(); });
        ASSERT_EQ(*list.find(c.id()), *first) << c.id();
    }
}

} // namespace

TEST(RecordList, DuplicateIdsAreFoundAndRemovedInListOrder)
{
    RecordList<Category> list;
    list.append(Category(5, "a", 0));
    list.append(Category(7, "b", 0));
    list.append(Category(5, "c", 0));
    list.append(Category(5, "d", 0));
    EXPECT_EQ(list.find(5)->name(), "a");
    EXPECT_TRUE(list.removeFirst(5));
    EXPECT_EQ(list.find(5)->name(), "c");
    EXPECT_TRUE(list.removeFirst(5));
    EXPECT_EQ(list.find(5)->name(), "d");
    list.append(Category(5, "e", 0));
    EXPECT_TRUE(list.removeFirst(5));
    EXPECT_EQ(list.find(5)->name(), "e");
    EXPECT_TRUE(list.removeFirst(5));
    EXPECT_EQ(list.find(5), nullptr);
    EXPECT_FALSE(list.removeFirst(5));
    EXPECT_EQ(names(list), std::vector<std::string>{"b"});
}

TEST(RecordList, KeepsInsertionOrderThroughRemovalsAndCompaction)
{
    // Remove enough to force compaction several times and compare with a plain vector.
    RecordList<Category> list;
    std::vector<Category> reference;
    for (int i = 1; i <= 5000; ++i) {
        list.append(Category(i % 1700, std::to_string(i), 0)); // ids repeat
        reference.emplace_back(i % 1700, std::to_string(i), 0);
    }
    std::mt19937 rng(3);
    while (reference.size() > 10) {
        const std::int32_t id = reference[rng() % reference.size()].id();
        ASSERT_TRUE(list.removeFirst(id));
        reference.erase(std::find_if(reference.begin(), reference.end(),
                                     [id](const Category& c) { return c.id() == id; }));
        ASSERT_EQ(list.size(), reference.size());
    }
    expectSameAs(list, reference);
}

TEST(RecordList, IteratesOverNothingWhenEmptiedOrCleared)
{
    RecordList<Category> list;
    EXPECT_EQ(list.begin(), list.end());
    list.append(Category(1, "x", 0));
    list.removeFirst(1);
    EXPECT_EQ(list.begin(), list.end());
    EXPECT_TRUE(list.empty());
    list.append(Category(2, "y", 0));
    list.clear();
    EXPECT_EQ(list.find(2), nullptr);
    EXPECT_EQ(list.rbegin(), list.rend());
}

TEST(RecordList, RecordsTakenOutGoBackToTheirPlacesInAnyOrder)
{
    // Ids repeat, so records go back into the middle of their id's chain too; enough are taken
    // for compaction to squeeze out the holes of some, which are then merged back in.
    std::mt19937 rng(11);
    for (int round = 0; round < 20; ++round) {
        RecordList<Category> list;
        std::vector<std::pair<std::uint64_t, Category>> all;
        const int count = 50 + static_cast<int>(rng() % 400);
        for (int i = 0; i < count; ++i) {
            Category c(static_cast<std::int32_t>(rng() % 40), std::to_string(i), 0);
            all.emplace_back(list.append(c), c);
        }
        std::vector<RecordList<Category>::Taken> out;
        const int takes = static_cast<int>(rng() % static_cast<unsigned>(count));
        for (int i = 0; i < takes && !list.empty(); ++i) {
            const std::int32_t id = static_cast<std::int32_t>(rng() % 40);
            if (auto taken = list.takeFirst(id)) {
                EXPECT_EQ(taken->value.id(), id);
                out.push_back(std::move(*taken));
            }
        }
        // What is left, and then the records put back in shuffled batches.
        const auto expected = [&] {
            std::vector<Category> kept;
            for (const auto& [key, c] : all) {
                if (std::none_of(out.begin(), out.end(),
                                 [&](const auto& t) { return t.key == key; })) {
                    kept.push_back(c);
                }
            }
            return kept;
        };
        expectSameAs(list, expected());
        std::shuffle(out.begin(), out.end(), rng);
        while (!out.empty()) {
            const std::size_t n = 1 + rng() % out.size();
            std::vector<std::uint64_t> keys;
            std::vector<Category> values;
            for (std::size_t i = out.size() - n; i < out.size(); ++i) {
                keys.push_back(out[i].key);
                values.push_back(out[i].value);
            }
            out.resize(out.size() - n);
            list.restore(keys, std::move(values));
            expectSameAs(list, expected());
        }
    }
}

TEST(RecordList, ARecordIsFoundAndTakenByItsPlaceAmongRecordsOfTheSameId)
{
    RecordList<Category> list;
    list.append(Category(1, "a", 0));
    const auto second = list.append(Category(1, "b", 0));
    const auto third = list.append(Category(1, "c", 0));
    list.append(Category(2, "d", 0));
    ASSERT_NE(list.findByKey(1, second), nullptr);
    EXPECT_EQ(list.findByKey(1, second)->name(), "b");
    EXPECT_EQ(list.findByKey(2, second), nullptr);
    EXPECT_EQ(list.keyOf(*list.find(1)) + 1, second);

    auto taken = list.takeByKey(1, second);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->value.name(), "b");
    EXPECT_EQ(names(list), (std::vector<std::string>{"a", "c", "d"}));
    EXPECT_FALSE(list.takeByKey(1, second));
    // The last of a chain, then the first: lookups follow.
    ASSERT_TRUE(list.takeByKey(1, third));
    EXPECT_TRUE(list.removeFirst(1));
    EXPECT_EQ(list.find(1), nullptr);
    list.restore({taken->key}, {taken->value});
    EXPECT_EQ(list.find(1)->name(), "b");
    EXPECT_EQ(names(list), (std::vector<std::string>{"b", "d"}));
}

TEST(RecordList, UndoingAppendsLeavesNoHolesAndTheSameKeysComeBack)
{
    RecordList<Category> list;
    list.append(Category(1, "a", 0));
    const auto b = list.append(Category(2, "b", 0));
    const auto c = list.append(Category(3, "c", 0));
    auto takenC = list.takeByKey(3, c);
    auto takenB = list.takeByKey(2, b);
    ASSERT_TRUE(takenB && takenC);
    // Against list order, as a delete of the shown rows takes them.
    list.restore({takenC->key, takenB->key}, {takenC->value, takenB->value});
    EXPECT_EQ(names(list), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(list.keyOf(*list.find(3)), c);
    // A record appended now goes after them, whatever was taken and put back before.
    EXPECT_GT(list.append(Category(4, "d", 0)), c);
}
