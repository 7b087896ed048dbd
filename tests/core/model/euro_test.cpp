#include "core/editors/main_money_option.h"
#include "core/editors/operation_editor.h"
#include "core/model/euro.h"
#include "core/model/number_text.h"
#include "core/model/recording_prompter.h"
#include "core/query/operations_list.h"
#include "core/reports/currency_cash.h"
#include "core/reports/yearly_summary.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/filter_file.h"

#include <gtest/gtest.h>
#include <map>

using namespace finora;

namespace {

TEST(EuroConversion, DividesOnceAndRoundsHalfUpToTheCent)
{
    const struct {
        double levs;
        const char* euro;
    } cases[] = {
        {1.70, "0.87"},
        {100.0, "51.13"},
        {0.0, "0.00"},
        {0.00977915, "0.01"}, // exactly half a cent rounds up
        {0.00977914, "0.00"}, // a hair below stays down
        {2.41545005, "1.24"},
        {2.41545004, "1.23"},
        {-2.41545005, "-1.24"}, // a debt rounds away from zero like a credit
        {-1.70, "-0.87"},
        {-0.001, "0.00"}, // no minus sign on nothing
        {1234567.89, "631224.54"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.levs);
        EXPECT_EQ(amountText(levsToEuro(c.levs)), c.euro);
    }
}

class EuroLedgerTest : public ::testing::Test {
protected:
    EuroLedgerTest() : doc(clock), settings(store) {}

    void add(std::int32_t type, double amount, std::int32_t currency, double levs,
             DateTime date = DateTime::fromParts(2026, 2, 3))
    {
        doc.addOperation(Operation(0, date, "x", type, 1, amount, currency, levs, "", {}, 1, 0));
    }
    void show(MainMoney money)
    {
        settings.setValue(IntSetting::EuroDisplay, static_cast<int>(money));
    }

    FixedClock clock{DateTime::fromParts(2026, 3, 1)};
    CFinoraDoc doc;
    MemorySettingsStore store;
    Settings settings;
    RecordingPrompter prompter{Answer::Yes};
};

TEST_F(EuroLedgerTest, ListTotalsAreTheLevTotalsConvertedOnceInEveryWayTheyAreMade)
{
    doc.addCurrency("USD");
    doc.addCategory("x", 0);
    add(kIncome, 1.70, 0, 1.70);
    for (int i = 0; i < 10; ++i) {
        add(kExpense, 0.01, 0, 0.01); // 0.01 € each when shown, 0.05 € together
    }
    add(kExpense, 5.0, 1, 2.41545005);
    doc.setModified(false);
    OperationsList list(doc, settings, prompter);
    resetCriteria(list.criteria(), doc, clock.now());

    show(MainMoney::Euro);
    list.refresh();
    EXPECT_NE(std::string(listColumnHeader(kColAmountBgl, MainMoney::Euro)).find("EUR"),
              std::string::npos);
    EXPECT_EQ(list.cellText(0, kColAmountBgl), "1.24");
    // Summing the shown cells would give 1.34 € of expense; the lev total 2.51545005 is 1.29 €.
    const std::vector<std::string> expected = {"0.87 EUR", "1.29 EUR", "-0.42 EUR"};
    const auto texts = [&] {
        const ListTotals& t = list.totals();
        return std::vector<std::string>{t.incomeText(), t.expenseText(), t.balanceText()};
    };
    EXPECT_EQ(texts(), expected);
    list.search(SearchRequest{}); // totals again, from the rows
    EXPECT_EQ(texts(), expected);

    // The amount filter's second figure is the euro one.
    list.filterByAmount(1.24, 0.0, true);
    ASSERT_EQ(list.rowCount(), 1u);
    EXPECT_EQ(list.cellText(0, kColCurrency), "USD");

    show(MainMoney::Both);
    list.refresh();
    EXPECT_EQ(list.cellText(0, kColAmountBgl), "2.42");
    EXPECT_EQ(list.cellText(0, kColAmountEuro), "1.24");
    EXPECT_EQ(list.totals().incomeText(), "1.70 BGL / 0.87 EUR");

    show(MainMoney::Levs);
    list.refresh();
    EXPECT_EQ(list.totals().expenseText(), "2.52 BGL");
    EXPECT_FALSE(doc.isModified()); // showing is all the option does
}

TEST_F(EuroLedgerTest, CashWindowAndYearlySumsShowTheMainCurrencyInEuro)
{
    doc.addCurrency("EUR");
    add(kIncome, 100.0, 0, 100.0);
    add(kExpense, 1.70, 0, 1.70, DateTime::fromParts(2026, 3, 4));
    add(kIncome, 10.0, 1, 19.50); // bought below the fixed rate
    show(MainMoney::Euro);

    std::map<std::string, CashRow> rows;
    for (const CashRow& r : cashRows(doc, settings)) {
        rows[r[1]] = r;
    }
    // The main currency's stock 98.30 лв, income 100 лв and expense 1.70 лв, in euro.
    EXPECT_EQ(rows["BGL"][2], "50.26");
    EXPECT_EQ(rows["BGL"][3], "50.26");
    EXPECT_EQ(rows["BGL"][6], "51.13");
    EXPECT_EQ(rows["BGL"][7], "0.87");
    // The euro is worth its fixed rate whatever it was bought at: 10 € are 10 €.
    EXPECT_EQ(rows["EUR"][3], "10.00");
    EXPECT_EQ(parseNumber(rows["EUR"][4]), kLevsPerEuro);
    EXPECT_EQ(rows["EUR"][2], "10.00"); // its own amounts stay as they are

    YearlySummary s;
    ASSERT_TRUE(computeYearlySummary(doc, 2026, s, MainMoney::Euro));
    EXPECT_EQ(amountText(s.income[1]), "61.10"); // 119.50 лв in February
    EXPECT_EQ(amountText(s.expense[2]), "0.87");
    EXPECT_EQ(amountText(s.maximum), "61.10");
}

TEST_F(EuroLedgerTest, TheEuroTakesItsFixedRateFromThePegOnInsteadOfTheSuggestion)
{
    doc.addCurrency("EUR");
    doc.addCurrency("USD");
    settings.setValue(IntSetting::FixingSuggestMode, 1);
    settings.setLastFixing("EUR", 1.96);
    settings.setLastFixing("USD", 1.70);
    const struct {
        DateTime date;
        const char* currency;
        double rate;
        bool asked;
    } cases[] = {
        {DateTime::fromParts(1998, 12, 31, 23, 59), "EUR", 1.96, true},
        {DateTime::fromParts(1999, 1, 1), "EUR", kLevsPerEuro, false},
        {DateTime::fromParts(2026, 1, 1), "EUR", kLevsPerEuro, false},
        {DateTime::fromParts(2026, 1, 1), "USD", 1.70, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.date.dateText() + " " + c.currency);
        prompter.clear();
        OperationEditor e(doc, settings, prompter, clock.now(), {});
        e.setDate(c.date);
        e.focusIn(EntryField::Amount);
        e.setText(EntryField::Amount, "100");
        e.focusOut(EntryField::Amount);
        e.selectCurrency(c.currency);
        EXPECT_EQ(parseNumber(e.rateText()), c.rate);
        EXPECT_EQ(e.valueText(), amountText(100.0 * c.rate));
        EXPECT_EQ(prompter.messages().empty(), !c.asked);
    }
}

TEST_F(EuroLedgerTest, TurningTheEuroOnOffersTheEuroOnceAsOneUndoableStep)
{
    const struct {
        MainMoney from;
        MainMoney to;
        Answer answer;
        bool added;
    } cases[] = {
        {MainMoney::Levs, MainMoney::Euro, Answer::Yes, true},
        {MainMoney::Levs, MainMoney::Both, Answer::Yes, true},
        {MainMoney::Levs, MainMoney::Euro, Answer::No, false},
        {MainMoney::Euro, MainMoney::Both, Answer::Yes, false}, // already on: not asked again
        {MainMoney::Levs, MainMoney::Levs, Answer::Yes, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.to));
        CFinoraDoc fresh(clock);
        fresh.setHistoryLimit(10);
        RecordingPrompter answers(c.answer);
        show(c.from);
        EXPECT_EQ(chooseMainMoney(fresh, settings, answers, c.to), c.added);
        EXPECT_EQ(settings.mainMoney(), c.to);
        EXPECT_EQ(fresh.currencyId("EUR") > 0, c.added);
        if (c.added) {
            // A new operation now starts in euro, and one undo takes the currency back.
            OperationEditor e(fresh, settings, answers, clock.now(), {});
            EXPECT_EQ(e.currency(), "EUR");
            EXPECT_TRUE(fresh.undo());
            EXPECT_LT(fresh.currencyId("EUR"), 1);
        }
    }
}

TEST(EuroFilterFile, TheAllCurrenciesChoiceIsStoredAlikeInEveryMode)
{
    for (const MainMoney money : {MainMoney::Levs, MainMoney::Euro, MainMoney::Both}) {
        SCOPED_TRACE(static_cast<int>(money));
        StoredFilter saved;
        saved.criteria.currency = currencyChoice(allCurrenciesItem(money));
        StoredFilter loaded;
        ASSERT_TRUE(parseFilter(serializeFilter(saved), loaded));
        EXPECT_TRUE(loaded.criteria.allCurrencies());
        StoredFilter asEver;
        asEver.criteria.currency = allCurrenciesItem();
        EXPECT_EQ(serializeFilter(loaded), serializeFilter(asEver));
    }
}

} // namespace
