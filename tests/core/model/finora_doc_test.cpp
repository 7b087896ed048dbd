#include "core/model/finora_doc.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>
#include <vector>

using namespace finora;

namespace {

const DateTime kNow = DateTime::fromParts(2024, 5, 17, 10, 30, 0);

class DocTest : public ::testing::Test {
protected:
    DocTest() : doc(clock)
    {
        doc.setChangeHandler([this](ChangeKind kind) { changes.push_back(kind); });
    }

    Operation op(std::int32_t category, std::int32_t currency = 0, double amount = 10.0)
    {
        return Operation(0, DateTime::fromParts(2024, 1, 2), "desc", kExpense, category, amount,
                         currency, amount, "notes", DateTime(), 0, 0);
    }

    // Every change must leave the document untouched when refused.
    void expectRefused(bool result)
    {
        EXPECT_FALSE(result);
        EXPECT_FALSE(doc.isModified());
        EXPECT_TRUE(changes.empty());
    }
    void resetMarks()
    {
        doc.setModified(false);
        changes.clear();
    }

    FixedClock clock{kNow};
    CFinoraDoc doc;
    std::vector<ChangeKind> changes;
};

const std::string kFood = cp1251::fromUtf8OrThrow("Храна");

} // namespace

TEST_F(DocTest, ANewDocumentHoldsOnlyTheMainCurrency)
{
    EXPECT_EQ(doc.operationCount(), 0u);
    EXPECT_TRUE(doc.ledger().currencies.empty());
    EXPECT_TRUE(doc.ledger().categories.empty());
    EXPECT_EQ(doc.ledger().counters, LedgerCounters{});
    EXPECT_EQ(doc.currencyName(0), "BGL");
    EXPECT_EQ(doc.currencyName(-1), "BGL");
    EXPECT_EQ(doc.currencyId("BGL"), 0);
    EXPECT_EQ(doc.currencyId("bgl"), -1);
    EXPECT_FALSE(doc.isModified());
}

TEST_F(DocTest, CategoryNamesAreUniqueUnderOneParentOnly)
{
    ASSERT_TRUE(doc.addCategory(kFood, 3));
    EXPECT_EQ(doc.ledger().counters.nextCategoryId, 1);
    resetMarks();
    expectRefused(doc.addCategory(kFood, 3));
    EXPECT_TRUE(doc.addCategory(kFood, 4));
    EXPECT_EQ(doc.ledger().categories.size(), 2u);
    EXPECT_EQ(doc.categoryParent(2), 4);
    EXPECT_TRUE(doc.isModified());
    EXPECT_EQ(changes, std::vector<ChangeKind>{ChangeKind::Ordinary});
    // Names compare exactly: another case is another name.
    EXPECT_TRUE(doc.addCategory(cp1251::fromUtf8OrThrow("храна"), 3));
}

TEST_F(DocTest, ChangingACategory)
{
    doc.addCategory("A", 0);
    doc.addCategory("B", 0);
    resetMarks();
    EXPECT_TRUE(doc.changeCategory(1, "A", 0)); // its own name under its own parent
    resetMarks();
    expectRefused(doc.changeCategory(1, "B", 0));
    expectRefused(doc.changeCategory(9, "C", 0));
    EXPECT_TRUE(doc.changeCategory(1, "B", 2));
    EXPECT_EQ(doc.categoryName(1), "B");
    EXPECT_EQ(doc.categoryParent(1), 2);
    EXPECT_TRUE(doc.hasSubcategories(2));
    EXPECT_FALSE(doc.hasSubcategories(1));
}

TEST_F(DocTest, CategoriesInUseOrWithChildrenAreNotDeleted)
{
    doc.addCategory("parent", 0);
    doc.addCategory("child", 1);
    doc.addOperation(op(2));
    resetMarks();
    expectRefused(doc.deleteCategory(1)); // has a child
    expectRefused(doc.deleteCategory(2)); // used by an operation
    expectRefused(doc.deleteCategory(3)); // no such category
    ASSERT_TRUE(doc.deleteOperation(1));
    EXPECT_TRUE(doc.deleteCategory(2));
    EXPECT_TRUE(doc.deleteCategory(1));
    EXPECT_TRUE(doc.ledger().categories.empty());
    // The counter is never lowered: the next category gets a fresh id.
    doc.addCategory("again", 0);
    EXPECT_EQ(doc.ledger().categories.begin()->id(), 3);
}

TEST_F(DocTest, DescendantWalkStopsAtTheTopMissingIdsAndCycles)
{
    doc.addCategory("1", 0);
    doc.addCategory("2", 1);
    doc.addCategory("3", 2);
    doc.addCategory("4", 99); // parent that does not exist
    EXPECT_TRUE(doc.isDescendant(3, 1));
    EXPECT_TRUE(doc.isDescendant(3, 2));
    EXPECT_FALSE(doc.isDescendant(1, 3));
    EXPECT_FALSE(doc.isDescendant(3, 3));
    EXPECT_FALSE(doc.isDescendant(4, 1));
    EXPECT_FALSE(doc.isDescendant(42, 1));
    // A cycle read from a file must not hang the walk.
    doc.changeCategory(1, "1", 3);
    EXPECT_FALSE(doc.isDescendant(1, 77));
    EXPECT_TRUE(doc.isDescendant(1, 2));
}

TEST_F(DocTest, CurrenciesAreAddedRenamedAndDeletedUnderTheRules)
{
    ASSERT_TRUE(doc.addCurrency("EUR"));
    ASSERT_TRUE(doc.addCurrency("USD"));
    resetMarks();
    expectRefused(doc.addCurrency("EUR"));
    expectRefused(doc.renameCurrency(2, "EUR"));
    expectRefused(doc.renameCurrency(3, "GBP"));
    EXPECT_TRUE(doc.renameCurrency(2, "USD")); // its own name
    EXPECT_TRUE(doc.renameCurrency(2, "GBP"));
    EXPECT_EQ(doc.currencyName(2), "GBP");
    EXPECT_EQ(doc.currencyId("GBP"), 2);
    EXPECT_EQ(doc.currencyId("gbp"), -1);
    EXPECT_EQ(doc.currencyName(7), "");

    doc.addOperation(op(1, 1));
    resetMarks();
    expectRefused(doc.deleteCurrency(1)); // used
    expectRefused(doc.deleteCurrency(5)); // missing
    EXPECT_TRUE(doc.deleteCurrency(2));
    EXPECT_EQ(doc.currencyId("GBP"), -1);
}

TEST_F(DocTest, TheMainCurrencyIsFoundBeforeAStoredCurrencyOfThatName)
{
    // The document does not refuse the name; the lookup hides such a record behind id 0.
    ASSERT_TRUE(doc.addCurrency("BGL"));
    EXPECT_EQ(doc.currencyId("BGL"), 0);
    EXPECT_EQ(doc.currencyName(1), "BGL");
}

TEST_F(DocTest, OperationsGetIdsAndTheTimeOfTheirLastChange)
{
    Operation fields = op(1);
    fields = Operation(77, fields.date(), "first", kIncome, 1, 5.5, 0, 5.5, "n", DateTime(), 1, 3);
    ASSERT_TRUE(doc.addOperation(fields));
    ASSERT_TRUE(doc.addOperation(op(2)));
    EXPECT_EQ(doc.ledger().counters.nextOperationId, 2);
    const Operation first = doc.operation(1);
    EXPECT_EQ(first.id(), 1); // the given id is ignored
    EXPECT_EQ(first.description(), "first");
    EXPECT_EQ(first.masterId(), 3);
    EXPECT_EQ(first.lastModified(), kNow);

    clock.set(DateTime::fromParts(2024, 6, 1));
    resetMarks();
    Operation changed(1, first.date(), "changed", kExpense, 4, 7.0, 0, 7.0, "", DateTime(), 0, 0);
    EXPECT_TRUE(doc.changeOperation(changed));
    EXPECT_EQ(doc.operation(1).description(), "changed");
    EXPECT_EQ(doc.operation(1).lastModified(), DateTime::fromParts(2024, 6, 1));
    resetMarks();
    expectRefused(doc.changeOperation(Operation(9, {}, "x", 1, 1, 1, 0, 1, "", {}, 0, 0)));

    clock.set(DateTime::fromParts(2024, 7, 1));
    EXPECT_TRUE(doc.markPaid(2));
    EXPECT_EQ(doc.operation(2).paid(), 1);
    EXPECT_EQ(doc.operation(2).lastModified(), DateTime::fromParts(2024, 7, 1));
    resetMarks();
    expectRefused(doc.markPaid(3));
    expectRefused(doc.deleteOperation(3));

    const Operation missing = doc.operation(42);
    EXPECT_EQ(missing, Operation());
}

TEST_F(DocTest, DuplicateOperationIdsFromAFileResolveToTheFirstInListOrder)
{
    Ledger ledger;
    ledger.operations.append(Operation(4, {}, "one", 1, 0, 1, 0, 1, "", {}, 1, 0));
    ledger.operations.append(Operation(4, {}, "two", 1, 0, 2, 0, 2, "", {}, 1, 0));
    ledger.counters.nextOperationId = 4;
    doc.replaceLedger(std::move(ledger));
    EXPECT_FALSE(doc.isModified());
    EXPECT_EQ(doc.operation(4).description(), "one");
    ASSERT_TRUE(doc.markPaid(4));
    EXPECT_TRUE(doc.deleteOperation(4));
    EXPECT_EQ(doc.operation(4).description(), "two");
    EXPECT_EQ(doc.operationCount(), 1u);
}

TEST_F(DocTest, DeletingAllAndMasterIds)
{
    doc.addOperation(op(1));
    doc.addOperation(op(1));
    resetMarks();
    EXPECT_EQ(doc.newMasterId(), 1);
    EXPECT_EQ(doc.newMasterId(), 2);
    EXPECT_FALSE(doc.isModified()); // handing out a master id is not a change
    doc.deleteAllOperations();
    EXPECT_EQ(doc.operationCount(), 0u);
    EXPECT_EQ(changes, std::vector<ChangeKind>{ChangeKind::DeleteAll});
    EXPECT_EQ(doc.ledger().counters.nextOperationId, 2);
    doc.addOperation(op(1));
    EXPECT_EQ(doc.ledger().operations.begin()->id(), 3);
}

TEST_F(DocTest, ClearingEmptiesTheLedgerButKeepsTheUnlockedFlag)
{
    doc.addCurrency("EUR");
    doc.addCategory("x", 0);
    doc.setLock("abc");
    doc.setUnlocked(true);
    doc.clear();
    EXPECT_TRUE(doc.ledger().currencies.empty());
    EXPECT_TRUE(doc.ledger().categories.empty());
    EXPECT_EQ(doc.ledger().counters, LedgerCounters{});
    EXPECT_EQ(doc.lockText(), "");
    EXPECT_TRUE(doc.isUnlocked());
}

TEST_F(DocTest, CountersPastTheLargestIdWrapWithoutUndefinedBehaviour)
{
    Ledger ledger;
    ledger.counters.nextOperationId = INT32_MAX;
    doc.replaceLedger(std::move(ledger));
    ASSERT_TRUE(doc.addOperation(op(1)));
    EXPECT_EQ(doc.ledger().operations.begin()->id(), INT32_MIN);
}
