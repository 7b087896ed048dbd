#include "reports/yearly_summary.h"

namespace finora {

bool computeYearlySummary(const CFinoraDoc& doc, int year, YearlySummary& summary)
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
    return summary.maximum != 0.0;
}

} // namespace finora
