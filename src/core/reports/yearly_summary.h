#pragma once

#include "core/model/euro.h"
#include "core/model/finora_doc.h"

#include <array>
#include <string>

namespace finora {

// A year's income and expense month by month, in BGL, from every operation of the ledger.
struct YearlySummary {
    double maximum = 0.0; // the running maximum of the monthly sums as they grow
    double yearIncome = 0.0;
    double yearExpense = 0.0;
    std::array<double, 12> income{};
    std::array<double, 12> expense{};
};

// Fills `summary` for `year` and returns whether the maximum is not zero. A ledger without
// operations returns false at once and leaves `summary` as it was. In euro mode every sum is the
// lev sum converted once.
bool computeYearlySummary(const CFinoraDoc& doc, int year, YearlySummary& summary,
                          MainMoney money = MainMoney::Levs);

// What the yearly chart draws: twelve groups of two whole numbers (income, expense), truncated
// towards zero, and the y scale's maximum, truncated too.
struct YearlyChartData {
    std::string title; // UTF-8
    std::array<const char*, 12> labels{};
    std::array<std::array<int, 2>, 12> values{};
    int yMaximum = 0;
    static constexpr int kTicks = 50;
};
YearlyChartData yearlyChartData(const YearlySummary& summary, int year);

} // namespace finora
