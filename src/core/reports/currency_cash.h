#pragma once

#include "core/model/finora_doc.h"
#include "core/settings/settings.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace finora {

// What the user holds of one currency and what it cost. Amounts are in the currency, values in
// BGL; only paid records move money, every record counts.
struct CurrencySummary {
    std::int32_t currencyId = 0;
    double amountInStock = 0.0;
    double valueInStock = 0.0;
    double incomeAmount = 0.0;
    double expenseAmount = 0.0;
    std::int32_t recordCount = 0;
    double averagedRate = 0.0; // paid value sum / paid amount sum; NaN when nothing is paid
    double lastUsedRate = 0.0;
    double paidAmountSum = 0.0;
    double paidValueSum = 0.0;
};

CurrencySummary summariseCurrency(const CFinoraDoc& doc, const Settings& settings,
                                  std::int32_t currencyId);

// The currency cash window's rows: the main currency, then every currency of the ledger,
// sorted by name; all of them from one pass over the operations.
inline constexpr std::size_t kCashColumnCount = 8;
using CashRow = std::array<std::string, kCashColumnCount>; // Windows-1251 texts
// UTF-8; in euro mode the value column names the euro.
const std::array<const char*, kCashColumnCount>& cashColumnHeaders(MainMoney money);
// Values, and the main currency's own amounts, are shown in the money mode of the settings. The
// euro is valued at its fixed rate.
std::vector<CashRow> cashRows(const CFinoraDoc& doc, const Settings& settings);
CashRow cashRow(const CurrencySummary& summary, const std::string& name, MainMoney money);

} // namespace finora
