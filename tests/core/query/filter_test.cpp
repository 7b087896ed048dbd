#include "core/model/finora_doc.h"
#include "core/query/filter_criteria.h"
#include "core/query/filter_matcher.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>

using namespace finora;

namespace {

class FilterTest : public ::testing::Test {
protected:
    FilterTest() : doc(clock)
    {
        doc.addCurrency("EUR");       // 1
        doc.addCategory("Food", 0);   // 1
        doc.addCategory("Shop", 1);   // 2
        doc.addCategory("Fruit", 2);  // 3
        doc.addCategory("Apples", 3); // 4, three levels below Food
        doc.addCategory("Salary", 0); // 5
        resetCriteria(criteria, doc, clock.now());
        criteria.from = DateTime::fromParts(2000, 1, 1);
        criteria.to = DateTime::fromParts(2030, 1, 1);
    }

    Operation op(std::int32_t category, std::int32_t type = kExpense, std::int32_t paid = 1,
                 std::int32_t currency = 0, DateTime date = DateTime::fromParts(2024, 5, 5, 12))
    {
        return Operation(1, date, "x", type, category, 1.0, currency, 1.0, "", {}, paid, 0);
    }
    bool passes(const Operation& o, bool subcategories = false) const
    {
        return FilterMatcher(criteria, doc, subcategories).matches(o);
    }

    FixedClock clock{DateTime::fromParts(2024, 6, 1, 10)};
    CFinoraDoc doc;
    FilterCriteria criteria;
};

} // namespace

TEST_F(FilterTest, ResetShowsEverythingFromTheEarliestToTheLatestDate)
{
    doc.addOperation(op(1, kExpense, 1, 0, DateTime::fromParts(2019, 3, 4)));
    doc.addOperation(op(1, kExpense, 1, 0, DateTime::fromParts(2031, 1, 1)));
    FilterCriteria c;
    c.categories = {3};
    c.paidState = 2;
    c.typeFilter = 1;
    resetCriteria(c, doc, clock.now());
    EXPECT_TRUE(c.categories.empty());
    EXPECT_EQ(c.from, DateTime::fromParts(2019, 3, 4));
    EXPECT_EQ(c.to, DateTime::fromParts(2031, 1, 1));
    EXPECT_EQ(c.typeFilter, 0);
    EXPECT_EQ(c.paidState, 0);
    EXPECT_EQ(cp1251::toUtf8(c.currency), ":: ВСИЧКИ ВАЛУТИ В BGL ::");
    EXPECT_TRUE(c.allCurrencies());
    // With no entries the period is today alone.
    CFinoraDoc empty(clock);
    resetCriteria(c, empty, clock.now());
    EXPECT_EQ(c.from, clock.now());
    EXPECT_EQ(c.to, clock.now());
}

TEST_F(FilterTest, ResetKeepsEntriesWhoseDateStatusIsNotValidInView)
{
    // Files from older versions or made by hand may mark a date invalid or null while its day
    // value is an ordinary day: "без филтър" must still show the whole ledger.
    const DateTime march = DateTime::fromParts(2019, 3, 4);
    doc.addOperation(op(1, kExpense, 1, 0, DateTime(march.days(), DateTime::Invalid)));
    doc.addOperation(
        op(1, kExpense, 1, 0, DateTime(DateTime::fromParts(2031, 1, 1).days(), DateTime::Null)));
    doc.addOperation(op(1, kExpense, 1, 0, DateTime::fromParts(2024, 5, 5)));
    doc.addOperation(op(1, kExpense, 1, 0, DateTime(1e12, DateTime::Valid))); // no calendar day
    resetCriteria(criteria, doc, clock.now());
    EXPECT_EQ(criteria.from, march);
    EXPECT_EQ(criteria.to, DateTime::fromParts(2031, 1, 1));
    int shown = 0;
    for (const Operation& o : doc.ledger().operations) {
        shown += passes(o) ? 1 : 0;
    }
    EXPECT_EQ(shown, 3);
}

TEST_F(FilterTest, PaidStatesAreLopsided)
{
    const Operation paid = op(1, kExpense, 1), unpaid = op(1, kExpense, 0),
                    odd = op(1, kExpense, 2);
    criteria.paidState = 1;
    EXPECT_TRUE(passes(paid));
    EXPECT_FALSE(passes(unpaid));
    EXPECT_TRUE(passes(odd));
    criteria.paidState = 2;
    EXPECT_FALSE(passes(paid));
    EXPECT_TRUE(passes(unpaid));
    EXPECT_TRUE(passes(odd));
    criteria.paidState = 0;
    EXPECT_TRUE(passes(unpaid));
}

TEST_F(FilterTest, TypesOtherThanIncomeAndExpensePassEveryTypeFilter)
{
    for (int t : {0, 1, 2}) {
        criteria.typeFilter = t;
        EXPECT_EQ(passes(op(1, kIncome)), t != 2) << t;
        EXPECT_EQ(passes(op(1, kExpense)), t != 1) << t;
        EXPECT_TRUE(passes(op(1, 7))) << t;
    }
}

TEST_F(FilterTest, SubcategoriesAtAnyDepthOnlyWhenAsked)
{
    criteria.categories = {1};
    EXPECT_TRUE(passes(op(1)));
    EXPECT_FALSE(passes(op(4)));
    EXPECT_TRUE(passes(op(4), true));
    EXPECT_FALSE(passes(op(5), true));
    criteria.categories = {3, 5};
    EXPECT_TRUE(passes(op(5)));
    EXPECT_TRUE(passes(op(4), true));
    EXPECT_FALSE(passes(op(2), true)); // a parent is not a subcategory
    criteria.categories = {42};        // unknown ids still match equal entries
    EXPECT_TRUE(passes(op(42), true));
}

TEST_F(FilterTest, ThePeriodCoversWholeDaysAtBothEnds)
{
    criteria.from = DateTime::fromParts(2024, 5, 5, 18, 30);
    criteria.to = DateTime::fromParts(2024, 5, 5, 6, 0);
    EXPECT_TRUE(passes(op(1, kExpense, 1, 0, DateTime::fromParts(2024, 5, 5, 0, 0, 0))));
    EXPECT_TRUE(passes(op(1, kExpense, 1, 0, DateTime::fromParts(2024, 5, 5, 23, 59, 59))));
    EXPECT_FALSE(passes(op(1, kExpense, 1, 0, DateTime::fromParts(2024, 5, 6, 0, 0, 0))));
    EXPECT_FALSE(passes(op(1, kExpense, 1, 0, DateTime::fromParts(2024, 5, 4, 23, 59, 59))));
    criteria.from = DateTime::fromParts(2024, 5, 6);
    criteria.to = DateTime::fromParts(2024, 5, 5);
    EXPECT_FALSE(passes(op(1, kExpense, 1, 0, DateTime::fromParts(2024, 5, 5, 12))));
    todayOnly(criteria, clock.now());
    EXPECT_TRUE(passes(op(1, kExpense, 1, 0, DateTime::fromParts(2024, 6, 1, 23))));
}

TEST_F(FilterTest, OneCurrencyOrAllOfThem)
{
    const Operation leva = op(1, kExpense, 1, 0), euro = op(1, kExpense, 1, 1);
    EXPECT_TRUE(passes(leva));
    EXPECT_TRUE(passes(euro));
    criteria.currency = "BGL";
    EXPECT_TRUE(passes(leva));
    EXPECT_FALSE(passes(euro));
    criteria.currency = "EUR";
    EXPECT_FALSE(passes(leva));
    EXPECT_TRUE(passes(euro));
    criteria.currency = "USD"; // not in the ledger: nothing, not even a record of currency -1
    EXPECT_FALSE(passes(op(1, kExpense, 1, -1)));
    criteria.currency = "";
    EXPECT_TRUE(passes(euro));
}

// A filter file may list millions of ids; what is applied is bounded by the ledger.
TEST_F(FilterTest, AFiltersCategoryListIsBoundedByTheLedgersCategories)
{
    FilterCriteria c;
    c.categories = {3, 999, 3};
    for (std::int32_t id = 0; id < 4'000'000; ++id) {
        c.categories.push_back(1000 + id % 2'000'000);
    }
    c.categories.push_back(4); // a known one after millions of others still counts
    boundCategories(c, doc);
    ASSERT_EQ(c.categories.size(), 2 + kUnknownCategoriesKept);
    // Order kept, each id once.
    EXPECT_EQ(std::vector<std::int32_t>(c.categories.begin(), c.categories.begin() + 3),
              (std::vector<std::int32_t>{3, 999, 1000}));
    EXPECT_EQ(c.categories.back(), 4);
}
