#include "core/model/recording_prompter.h"
#include "core/reports/currency_cash.h"
#include "core/reports/rate_suggestion.h"
#include "core/reports/yearly_summary.h"
#include "core/settings/memory_settings_store.h"
#include "core/text/cp1251.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace finora;

namespace {

class ReportsTest : public ::testing::Test {
protected:
    ReportsTest() : doc(clock), settings(store)
    {
        doc.addCurrency("USD"); // 1: bought and sold
        doc.addCurrency("CHF"); // 2: only unpaid
        doc.addCurrency("GBP"); // 3: unused
        doc.addCurrency("AUD"); // 4: bought twice
    }
    void add(std::int32_t type, std::int32_t currency, double amount, double bgl, std::int32_t paid,
             DateTime date = DateTime::fromParts(2024, 3, 10))
    {
        doc.addOperation(Operation(0, date, "x", type, 1, amount, currency, bgl, "", {}, paid, 0));
    }
    std::vector<std::string> row(const std::string& name)
    {
        for (const CashRow& r : cashRows(doc, settings)) {
            if (r[1] == name) {
                return {r.begin(), r.end()};
            }
        }
        return {};
    }

    FixedClock clock{DateTime::fromParts(2024, 6, 1)};
    CFinoraDoc doc;
    MemorySettingsStore store;
    Settings settings;
    RecordingPrompter prompter{Answer::Yes};
};

} // namespace

TEST_F(ReportsTest, CashRowsForEachKindOfCurrency)
{
    add(kIncome, 0, 100.0, 100.0, 1);
    add(kExpense, 0, 30.0, 30.0, 1);
    add(kExpense, 0, 99.0, 99.0, 0); // unpaid: counts only
    add(kIncome, 1, 100.0, 175.0, 1);
    add(kExpense, 1, 100.0, 180.0, 1);
    add(kIncome, 2, 50.0, 97.79, 0);
    add(kIncome, 4, 10.0, 12.0, 1);
    add(kIncome, 4, 10.0, 13.0, 1);
    add(kExpense, 4, 5.0, 6.0, 1);

    EXPECT_EQ(row("BGL"), (std::vector<std::string>{"0", "BGL", "70.00", "70.00", "1.000000", "3",
                                                    "100.00", "30.00"}));
    // Bought and sold alike: nothing in stock, no rate, but the turnover shows.
    EXPECT_EQ(row("USD"), (std::vector<std::string>{"1", "USD", "0.00", "0.00", "n/a", "2",
                                                    "100.00", "100.00"}));
    EXPECT_EQ(row("CHF"),
              (std::vector<std::string>{"2", "CHF", "0.00", "0.00", "n/a", "1", "0.00", "0.00"}));
    EXPECT_EQ(row("GBP"),
              (std::vector<std::string>{"3", "GBP", "0.00", "0.00", "n/a", "0", "0.00", "0.00"}));
    // Stock 15 valued at the rate of all paid movements: 31 / 25 = 1.24, not 19 / 15.
    EXPECT_EQ(row("AUD"), (std::vector<std::string>{"4", "AUD", "15.00", "18.60", "1.240000", "3",
                                                    "20.00", "5.00"}));

    const auto rows = cashRows(doc, settings);
    std::vector<std::string> order;
    for (const CashRow& r : rows) {
        order.push_back(r[1]);
    }
    EXPECT_EQ(order, (std::vector<std::string>{"AUD", "BGL", "CHF", "GBP", "USD"}));

    const CurrencySummary usd = summariseCurrency(doc, settings, 1);
    EXPECT_EQ(usd.paidValueSum, 355.0);
    EXPECT_DOUBLE_EQ(usd.averagedRate, 1.775);
    EXPECT_TRUE(std::isnan(summariseCurrency(doc, settings, 2).averagedRate));
}

TEST_F(ReportsTest, SuggestionFollowsTheModeAndTheAnswer)
{
    add(kIncome, 1, 100.0, 175.0, 1);
    add(kExpense, 1, 100.0, 180.0, 1);
    EXPECT_FALSE(suggestRate(doc, settings, prompter, 10.0, "USD")); // mode 0
    EXPECT_TRUE(prompter.messages().empty());

    settings.setValue(IntSetting::FixingSuggestMode, 2);
    auto r = suggestRate(doc, settings, prompter, 10.0, "USD");
    ASSERT_TRUE(r);
    EXPECT_EQ(r->rate, 1.775);
    EXPECT_EQ(r->value, 17.75);
    EXPECT_EQ(prompter.messages().back(),
              (Message{"Указване на курс",
                       "Желаете ли да приложите усреднен курс за валутата USD?\n\n(Yes) да, "
                       "приложи усреднен курс\n(No) не, аз ще въведа нов курс\n(Cancel) запази "
                       "текущата стойност",
                       MessageIcon::Question, MessageButtons::YesNoCancel}));
    prompter.queue(Answer::No);
    r = suggestRate(doc, settings, prompter, 10.0, "USD");
    ASSERT_TRUE(r);
    EXPECT_EQ(r->rate, 1.0);
    EXPECT_EQ(r->value, 10.0);
    prompter.queue(Answer::Cancel);
    EXPECT_FALSE(suggestRate(doc, settings, prompter, 10.0, "USD"));

    // Only unpaid payments, or none: no rate to offer, no question.
    prompter.clear();
    add(kIncome, 2, 50.0, 97.79, 0);
    EXPECT_FALSE(suggestRate(doc, settings, prompter, 10.0, "CHF"));
    EXPECT_FALSE(suggestRate(doc, settings, prompter, 10.0, "GBP"));
    EXPECT_FALSE(suggestRate(doc, settings, prompter, 10.0, "BGL"));
    EXPECT_TRUE(prompter.messages().empty());
}

TEST_F(ReportsTest, LastUsedRateIsRememberedAndOfferedRounded)
{
    settings.setValue(IntSetting::FixingSuggestMode, 1);
    settings.setValue(IntSetting::AskForFixingSuggestion, 0);
    // Never used: the stored default 1 is offered, silently with asking switched off.
    auto r = suggestRate(doc, settings, prompter, 12.345, "GBP");
    ASSERT_TRUE(r);
    EXPECT_EQ(r->rate, 1.0);
    EXPECT_EQ(r->value, 12.35); // 12.345 rounds as its binary value says: 12.3450000000000006
    rememberLastRate(doc, settings, 3, 2.3456789);
    rememberLastRate(doc, settings, 0, 5.0);
    EXPECT_EQ(store.readText("Settings", "LastFixingGBP", ""), "2.345679");
    EXPECT_FALSE(store.contains("Settings", "LastFixingBGL"));
    r = suggestRate(doc, settings, prompter, 100.0, "GBP");
    ASSERT_TRUE(r);
    EXPECT_EQ(r->rate, 2.345679);
    EXPECT_EQ(r->value, 234.57);
    EXPECT_TRUE(prompter.messages().empty());
    // A stored mode of 3 reads as 0.
    settings.setValue(IntSetting::FixingSuggestMode, 3);
    EXPECT_FALSE(suggestRate(doc, settings, prompter, 100.0, "GBP"));
}

TEST_F(ReportsTest, YearlySummaryMonthByMonth)
{
    YearlySummary s;
    s.maximum = 42;
    EXPECT_FALSE(computeYearlySummary(doc, 2024, s)); // no operations: left as it was
    EXPECT_EQ(s.maximum, 42);

    add(kIncome, 0, 0, 1234.99, 1, DateTime::fromParts(2024, 1, 1));
    add(kExpense, 0, 0, 300.0, 0, DateTime::fromParts(2024, 12, 31, 23, 59, 59));
    add(kExpense, 0, 0, 1000.0, 1, DateTime::fromParts(2024, 12, 1));
    add(7, 0, 0, 5.5, 1, DateTime::fromParts(2024, 6, 15));
    add(kIncome, 0, 0, 999999.0, 1, DateTime::fromParts(2023, 12, 31));
    ASSERT_TRUE(computeYearlySummary(doc, 2024, s));
    EXPECT_EQ(s.income[0], 1234.99);
    EXPECT_EQ(s.expense[11], 1300.0);
    EXPECT_EQ(s.expense[5], 5.5); // any type but income is expense
    EXPECT_EQ(s.maximum, 1300.0);
    EXPECT_DOUBLE_EQ(s.yearIncome, 1234.99);
    EXPECT_DOUBLE_EQ(s.yearExpense, 1305.5);

    // The chart's numbers: first and last day in the first and last group, whole numbers
    // truncated towards zero, the second label as the chart has always spelled it.
    add(kIncome, 0, 0, -5.7, 1, DateTime::fromParts(2024, 2, 29));
    ASSERT_TRUE(computeYearlySummary(doc, 2024, s));
    const YearlyChartData chart = yearlyChartData(s, 2024);
    EXPECT_EQ(chart.title, "СПРАВКА ЗА ПРИХОДИТЕ И РАЗХОДИТЕ ПРЕЗ 2024 ГОДИНА");
    EXPECT_EQ(chart.values[0], (std::array<int, 2>{1234, 0}));
    EXPECT_EQ(chart.values[1], (std::array<int, 2>{-5, 0}));
    EXPECT_EQ(chart.values[11], (std::array<int, 2>{0, 1300}));
    EXPECT_EQ(chart.values[5], (std::array<int, 2>{0, 5}));
    EXPECT_EQ(chart.yMaximum, 1300);
    EXPECT_STREQ(chart.labels[1], "феврурари");
    EXPECT_STREQ(chart.labels[11], "декември");

    // A year without rows: every bar and the maximum are zero.
    EXPECT_FALSE(computeYearlySummary(doc, 2019, s));
    EXPECT_EQ(s.maximum, 0.0);
    EXPECT_EQ(yearlyChartData(s, 2019).yMaximum, 0);
    EXPECT_EQ(yearlyChartData(s, 2019).values[0], (std::array<int, 2>{0, 0}));
}

TEST_F(ReportsTest, TheMaximumRemembersSumsThatLaterShrank)
{
    // The maximum follows the sums as they grow in ledger order; a later negative amount
    // lowers a month's sum but not the maximum already reached.
    YearlySummary s;
    add(kExpense, 0, 0, 500.0, 1, DateTime::fromParts(2024, 3, 1));
    add(kExpense, 0, 0, -400.0, 1, DateTime::fromParts(2024, 3, 2));
    add(kIncome, 0, 0, 200.0, 1, DateTime::fromParts(2024, 4, 2));
    ASSERT_TRUE(computeYearlySummary(doc, 2024, s));
    EXPECT_EQ(s.expense[2], 100.0);
    EXPECT_EQ(s.income[3], 200.0);
    EXPECT_EQ(s.maximum, 500.0);
}
