#include "core/model/lock_guard.h"
#include "core/model/recording_prompter.h"
#include "core/query/operations_list.h"
#include "core/settings/memory_settings_store.h"
#include "core/text/cp1251.h"

#include <gtest/gtest.h>

using namespace finora;

namespace {

std::string cp(const char* utf8)
{
    return cp1251::fromUtf8OrThrow(utf8);
}

class ListTest : public ::testing::Test {
protected:
    ListTest() : doc(clock), settings(store), list(doc, settings, prompter)
    {
        doc.addCurrency("EUR");
        doc.addCategory(cp("Храна"), 0);   // 1
        doc.addCategory(cp("Пазар"), 1);   // 2
        doc.addCategory(cp("Плодове"), 2); // 3
        doc.addCategory(cp("Заплата"), 0); // 4
        add(cp("Заплата за май"), kIncome, 4, 2000.0, 0, 2000.0, "", 1);
        add(cp("Ябълки ЧЕРВЕНИ"), kExpense, 3, 4.505, 0, 4.505, cp("от пазара"), 0);
        add("Hotel", kExpense, 2, 50.0, 1, 97.7915, cp("море"), 1);
        add("Odd type", 9, 1, 10.0, 0, 10.0, "", 1);
        resetCriteria(list.criteria(), doc, clock.now());
        doc.setModified(false);
    }

    void add(const std::string& description, std::int32_t type, std::int32_t category,
             double amount, std::int32_t currency, double bgl, const std::string& notes,
             std::int32_t paid)
    {
        doc.addOperation(Operation(0, DateTime::fromParts(2024, 5, 5, 9, 7, 2), description, type,
                                   category, amount, currency, bgl, notes, {}, paid, 0));
    }
    std::vector<std::string> column(int c) const
    {
        std::vector<std::string> out;
        for (std::size_t i = 0; i < list.rowCount(); ++i) {
            out.push_back(cp1251::toUtf8(list.cellText(i, c)));
        }
        return out;
    }
    std::vector<bool> selection() const
    {
        std::vector<bool> out;
        for (std::size_t i = 0; i < list.rowCount(); ++i) {
            out.push_back(list.isSelected(i));
        }
        return out;
    }
    std::vector<std::string> totals() const
    {
        return {cp1251::toUtf8(list.totals().incomeText()),
                cp1251::toUtf8(list.totals().expenseText()),
                cp1251::toUtf8(list.totals().balanceText())};
    }
    void search(const char* text, int mode, bool description, bool notes, bool currency,
                bool exact = false, bool caseSensitive = false, bool showOnly = false)
    {
        SearchRequest r;
        r.text = cp(text);
        r.mode = mode;
        r.inDescription = description;
        r.inNotes = notes;
        r.inCurrency = currency;
        r.exactPhrase = exact;
        r.caseSensitive = caseSensitive;
        r.showOnlyMatching = showOnly;
        list.search(r);
    }

    FixedClock clock{DateTime::fromParts(2024, 6, 1, 10)};
    CFinoraDoc doc;
    MemorySettingsStore store;
    Settings settings;
    RecordingPrompter prompter{Answer::Yes};
    OperationsList list;
};

} // namespace

TEST_F(ListTest, RefreshShowsTheLedgerReversedWithTheBottomRowSelected)
{
    list.refresh();
    EXPECT_EQ(column(kColNumber), (std::vector<std::string>{"4", "3", "2", "1"}));
    EXPECT_EQ(selection(), (std::vector<bool>{false, false, false, true}));
    EXPECT_EQ(list.currentRow(), 3);
    EXPECT_EQ(totals(), (std::vector<std::string>{"2000.00 BGL", "112.30 BGL", "1887.70 BGL"}));
}

TEST_F(ListTest, NoFilterShowsEveryDayBeforeAndAfter1900)
{
    // At noon before 1900 the raw day value lies below that day's midnight.
    doc.deleteAllOperations();
    for (const DateTime date :
         {DateTime::fromParts(1776, 12, 31, 12), DateTime::fromParts(1900, 1, 1, 12),
          DateTime::fromParts(1776, 12, 31, 18), DateTime::fromParts(1025, 6, 1, 6)}) {
        doc.addOperation(Operation(0, date, "x", kExpense, 1, 1.0, 0, 1.0, "", {}, 1, 0));
    }
    resetCriteria(list.criteria(), doc, clock.now());
    list.refresh();
    EXPECT_EQ(column(kColDate),
              (std::vector<std::string>{"01-06-1025", "31-12-1776", "01-01-1900", "31-12-1776"}));
    EXPECT_EQ(totals()[1], "4.00 BGL");
    list.criteria().from = DateTime::fromParts(1776, 12, 31);
    list.criteria().to = DateTime::fromParts(1776, 12, 31);
    list.refresh();
    EXPECT_EQ(list.rowCount(), 2u);
}

TEST_F(ListTest, CellTexts)
{
    list.refresh();
    EXPECT_EQ(column(kColDate)[0], "05-05-2024");
    EXPECT_EQ(column(kColLastModified)[0], "1-6-2024 10:0:0");
    EXPECT_EQ(column(kColType), (std::vector<std::string>{"", "Р", "Р", "П"}));
    // One level of parent at most, whatever the depth.
    EXPECT_EQ(column(kColCategory),
              (std::vector<std::string>{"Храна", "Храна :: Пазар", "Пазар :: Плодове", "Заплата"}));
    EXPECT_EQ(column(kColAmount)[2], "4.50"); // 4.505 is 4.50499... in binary
    EXPECT_EQ(column(kColCurrency), (std::vector<std::string>{"BGL", "EUR", "BGL", "BGL"}));
    EXPECT_EQ(column(kColAmountBgl)[1], "97.79");
    EXPECT_EQ(column(kColPaid), (std::vector<std::string>{"да", "да", "не", "да"}));
}

// A 16 MB description is shown from a bounded prefix; the record keeps it whole.
TEST_F(ListTest, ALongTextIsShownCutWhileTheRecordKeepsItWhole)
{
    const std::string huge(16u << 20, 'a');
    add(huge, kExpense, 1, 1.0, 0, 1.0, huge, 1);
    list.refresh();
    for (const int c : {kColDescription, kColNotes}) {
        SCOPED_TRACE(c);
        const std::string shown = list.shownText(0, c);
        EXPECT_LT(shown.size(), 4096u);
        EXPECT_EQ(shown.substr(0, 100), huge.substr(0, 100));
        EXPECT_EQ(cp1251::toUtf8(shown.substr(shown.size() - 1)), "…");
        EXPECT_EQ(list.cellText(0, c), huge);
    }
    EXPECT_EQ(list.shownText(1, kColDescription), list.cellText(1, kColDescription));
}

TEST_F(ListTest, OneCurrencySumsItsOwnAmountsUnderItsCode)
{
    list.criteria().currency = "EUR";
    list.refresh();
    EXPECT_EQ(list.rowCount(), 1u);
    EXPECT_EQ(totals(), (std::vector<std::string>{"0.00 EUR", "50.00 EUR", "-50.00 EUR"}));
}

TEST_F(ListTest, AnEmptyResultAndALockedLedger)
{
    list.criteria().paidState = 2;
    list.criteria().typeFilter = 1;
    list.refresh();
    EXPECT_EQ(list.rowCount(), 0u);
    EXPECT_EQ(list.currentRow(), -1);
    EXPECT_EQ(totals(), (std::vector<std::string>{"0.00 BGL", "0.00 BGL", "0.00 BGL"}));

    list.criteria() = FilterCriteria();
    resetCriteria(list.criteria(), doc, clock.now());
    list.refresh();
    doc.setLock("pw");
    list.refresh();
    EXPECT_EQ(list.rowCount(), 0u);
    // The totals keep what they showed.
    EXPECT_EQ(totals()[0], "2000.00 BGL");
}

TEST_F(ListTest, ColumnWidthsFollowTheVisibilityKeys)
{
    EXPECT_EQ(columnWidth(kColNumber, settings), 0);
    EXPECT_EQ(columnWidth(kColDescription, settings), 250);
    settings.setColumnShown(Column::Descr, false);
    EXPECT_EQ(columnWidth(kColDescription, settings), 0);
    EXPECT_EQ(columnWidth(kColPaid, settings), 80);
}

TEST_F(ListTest, SearchMarksTheRowsEachModeAndOptionFind)
{
    using R = SearchRequest;
    struct Case {
        const char* text;
        int mode;
        bool description, notes, currency, exact, caseSensitive;
        std::vector<bool> marked; // rows 4, 3, 2, 1
    };
    const Case cases[] = {
        {"червени", R::And, true, false, false, false, false, {0, 0, 1, 0}}, // folds Cyrillic
        {"червени", R::And, true, false, false, false, true, {0, 0, 0, 0}},
        {"ЧЕРВЕНИ", R::And, true, false, false, false, true, {0, 0, 1, 0}},
        {"ябълки пазара", R::And, true, true, false, false, false, {0, 0, 1, 0}},
        {"ябълки пазара", R::And, true, false, false, false, false, {0, 0, 0, 0}},
        {"hotel  заплата", R::Or, true, false, false, false, false, {0, 1, 0, 1}},
        {"eur море", R::Not, false, true, true, false, false, {1, 0, 1, 1}},
        {"от паз", R::And, false, true, false, true, true, {0, 0, 1, 0}},
        // And, exact, not case-sensitive: "notes" reads the BGL amount, "currency" the amount.
        {"97.79", R::And, false, true, false, true, false, {0, 1, 0, 0}},
        {"50.00", R::And, false, false, true, true, false, {0, 1, 0, 0}},
        {"от паз", R::And, false, true, false, true, false, {0, 0, 0, 0}},
        {"море", R::Not, false, true, false, true, false, {1, 0, 1, 1}}, // Not reads the notes
        {"HOT", R::And, true, false, false, false, false, {0, 1, 0, 0}}, // inside a longer word
    };
    list.refresh();
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " mode " + std::to_string(c.mode));
        search(c.text, c.mode, c.description, c.notes, c.currency, c.exact, c.caseSensitive);
        EXPECT_EQ(selection(), c.marked);
    }
    EXPECT_EQ(prompter.messages().back().text, OperationsList::kSearchDoneText);
    EXPECT_EQ(cp1251::toUtf8(list.lastSearchText()), "HOT");
}

TEST_F(ListTest, ShowOnlyMatchingRemovesRowsAndTotalsTheRest)
{
    list.refresh();
    search("ябълки hotel", SearchRequest::Or, true, false, false, false, false, true);
    EXPECT_EQ(column(kColNumber), (std::vector<std::string>{"3", "2"}));
    EXPECT_EQ(selection(), (std::vector<bool>{false, false}));
    // From the two-decimal texts: 97.79 + 4.50, not the stored values.
    EXPECT_EQ(totals(), (std::vector<std::string>{"0.00 BGL", "102.29 BGL", "-102.29 BGL"}));
    search("nothing", SearchRequest::And, true, true, true, false, false, true);
    EXPECT_EQ(list.rowCount(), 0u);
    EXPECT_EQ(totals()[1], "0.00 BGL");
    list.refresh();
    EXPECT_EQ(list.rowCount(), 4u);
}

TEST_F(ListTest, AmountFilterComparesTheShownTexts)
{
    struct Case {
        double amount, tolerance;
        bool inBgl;
        std::vector<std::string> rows;
    };
    const Case cases[] = {
        {4.50, 0, false, {"2"}},     // 4.505 shows as 4.50
        {97.79, 0, true, {"3"}},     // the BGL column
        {97.79, 0, false, {}},       // not the amount
        {30, 25, false, {"4", "3"}}, // 5 .. 55, income or expense alike
        {10, -1, true, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.amount);
        list.refresh();
        list.filterByAmount(c.amount, c.tolerance, c.inBgl);
        EXPECT_EQ(column(kColNumber), c.rows);
        EXPECT_EQ(totals()[0], "2000.00 BGL"); // not recomputed
    }
}

TEST_F(ListTest, DeleteCommandsAskFirstAndRespectTheLock)
{
    list.refresh();
    prompter.queue(Answer::No);
    EXPECT_FALSE(list.deleteShown());
    EXPECT_EQ(doc.operationCount(), 4u);
    EXPECT_EQ(prompter.messages().back().buttons, MessageButtons::YesNo);

    list.criteria().typeFilter = 2; // expenses, and the entry of type 9 that passes any filter
    list.refresh();
    ASSERT_EQ(column(kColNumber), (std::vector<std::string>{"4", "3", "2"}));
    list.setSelected(0, true);
    EXPECT_TRUE(list.deleteSelected()); // the picked row 4 and the bottom row 2
    EXPECT_EQ(doc.operationCount(), 2u);
    EXPECT_EQ(doc.operation(4).id(), 0);
    EXPECT_EQ(doc.operation(3).id(), 3);
    EXPECT_EQ(column(kColNumber), std::vector<std::string>{"3"});
    EXPECT_TRUE(list.deleteShown()); // the income entry is not shown and stays
    EXPECT_EQ(doc.operationCount(), 1u);
    EXPECT_EQ(doc.operation(1).id(), 1);

    doc.setLock("pw");
    prompter.clear();
    EXPECT_FALSE(list.deleteAll());
    EXPECT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(prompter.messages()[0].caption, kLockedCaption);
    ASSERT_TRUE(doc.checkLock("pw", CFinoraDoc::LockCheck::TemporaryUnlock));
    EXPECT_TRUE(list.deleteAll()); // every entry, shown or not
    EXPECT_EQ(doc.operationCount(), 0u);
}

TEST_F(ListTest, DeletingManyRowsNotifiesAutoSaveOnce)
{
    int notifications = 0;
    doc.setChangeHandler([&](ChangeKind) { ++notifications; });
    list.refresh();
    EXPECT_TRUE(list.deleteShown());
    EXPECT_EQ(doc.operationCount(), 0u);
    EXPECT_EQ(notifications, 1);
}

TEST_F(ListTest, SetPaidMarksOnlyUnpaidSelectedRows)
{
    list.refresh();
    list.selectAll();
    clock.set(DateTime::fromParts(2024, 7, 1));
    prompter.queue(Answer::No);
    EXPECT_FALSE(list.setSelectedPaid());
    EXPECT_EQ(doc.operation(2).paid(), 0);
    EXPECT_EQ(prompter.messages().back().icon, MessageIcon::Question);
    EXPECT_EQ(prompter.messages().back().text, OperationsList::kPaidQuestion);
    EXPECT_TRUE(list.setSelectedPaid());
    EXPECT_EQ(column(kColPaid), (std::vector<std::string>{"да", "да", "да", "да"}));
    EXPECT_EQ(doc.operation(2).paid(), 1);
    EXPECT_EQ(doc.operation(2).lastModified(), DateTime::fromParts(2024, 7, 1));
    EXPECT_NE(doc.operation(1).lastModified(), DateTime::fromParts(2024, 7, 1)); // was paid
    EXPECT_EQ(totals()[0], "2000.00 BGL");
}
