#include "core/reports/yearly_summary.h"

#include <cmath>

namespace finora {

bool computeYearlySummary(const CFinoraDoc& doc, int year, YearlySummary& summary, MainMoney money)
{
    if (doc.operationCount() == 0) {
        return false;
    }
    summary = YearlySummary();
    for (const Operation& op : doc.ledger().operations) {
        DateTimeParts parts;
        if (!op.date().toParts(parts) || parts.year != year) {
            continue;
        }
        const auto m = static_cast<std::size_t>(parts.month - 1);
        (op.type() == kIncome ? summary.income[m] : summary.expense[m]) += op.amountBgl();
        // The maximum follows the month just changed, income first, as the sums grow.
        if (summary.income[m] > summary.maximum) {
            summary.maximum = summary.income[m];
        } else if (summary.expense[m] > summary.maximum) {
            summary.maximum = summary.expense[m];
        }
    }
    for (std::size_t m = 0; m < 12; ++m) {
        summary.yearIncome += summary.income[m];
        summary.yearExpense += summary.expense[m];
    }
    if (money == MainMoney::Euro) {
        const MainMoneyView euro(money);
        for (std::size_t m = 0; m < 12; ++m) {
            summary.income[m] = euro.value(summary.income[m]);
            summary.expense[m] = euro.value(summary.expense[m]);
        }
        summary.maximum = euro.value(summary.maximum);
        summary.yearIncome = euro.value(summary.yearIncome);
        summary.yearExpense = euro.value(summary.yearExpense);
    }
    return summary.maximum != 0.0;
}

namespace {

// Truncation towards zero, with the numbers no int can hold pinned to its ends.
int wholePart(double value)
{
    if (!(value == value)) {
        return 0;
    }
    const double t = std::trunc(value);
    if (t >= 2147483647.0) {
        return 2147483647;
    }
    if (t <= -2147483648.0) {
        return -2147483647 - 1;
    }
    return static_cast<int>(t);
}

} // namespace

YearlyChartData yearlyChartData(const YearlySummary& summary, int year)
{
    // "феврурари" is the label the chart has always shown.
    static constexpr std::array<const char*, 12> kMonths = {
        "януари", "феврурари", "март",      "април",    "май",     "юни",
        "юли",    "август",    "септември", "октомври", "ноември", "декември"};
    YearlyChartData data;
    data.title = "СПРАВКА ЗА ПРИХОДИТЕ И РАЗХОДИТЕ ПРЕЗ " + std::to_string(year) + " ГОДИНА";
    data.labels = kMonths;
    for (std::size_t m = 0; m < 12; ++m) {
        data.values[m] = {wholePart(summary.income[m]), wholePart(summary.expense[m])};
    }
    data.yMaximum = wholePart(summary.maximum);
    return data;
}

} // namespace finora
