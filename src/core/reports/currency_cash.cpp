#include "core/reports/currency_cash.h"

#include "core/model/choice_lists.h"
#include "core/model/number_text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace finora {
namespace {

void addRecord(CurrencySummary& s, const Operation& op)
{
    ++s.recordCount;
    if (op.paid() != 1) {
        return;
    }
    if (op.type() == kIncome) {
        s.amountInStock += op.amount();
        s.valueInStock += op.amountBgl();
        s.incomeAmount += op.amount();
    } else {
        s.amountInStock -= op.amount();
        s.valueInStock -= op.amountBgl();
        s.expenseAmount += op.amount();
    }
    s.paidAmountSum += op.amount();
    s.paidValueSum += op.amountBgl();
}

void finish(CurrencySummary& s, const CFinoraDoc& doc, const Settings& settings)
{
    if (s.currencyId == 0) {
        s.averagedRate = 1.0;
        s.lastUsedRate = 1.0;
        return;
    }
    s.lastUsedRate = settings.lastFixing(doc.currencyName(s.currencyId));
    s.averagedRate = s.paidAmountSum == 0.0 && s.paidValueSum == 0.0
                         ? std::numeric_limits<double>::quiet_NaN()
                         : s.paidValueSum / s.paidAmountSum;
}

} // namespace

CurrencySummary summariseCurrency(const CFinoraDoc& doc, const Settings& settings,
                                  std::int32_t currencyId)
{
    CurrencySummary s;
    s.currencyId = currencyId;
    for (const Operation& op : doc.ledger().operations) {
        if (op.currencyId() == currencyId) {
            addRecord(s, op);
        }
    }
    finish(s, doc, settings);
    return s;
}

const std::array<const char*, kCashColumnCount>& cashColumnHeaders(MainMoney money)
{
    static const std::array<const char*, kCashColumnCount> levs = {
        "",           "валута",       "в наличност", "ср. стойност в BGL",
        "сред. курс", "бр. операции", "приход",      "разход"};
    static const std::array<const char*, kCashColumnCount> euro = [] {
        auto headers = levs;
        headers[3] = "ср. стойност в EUR";
        return headers;
    }();
    return money == MainMoney::Euro ? euro : levs;
}

CashRow cashRow(const CurrencySummary& s, const std::string& name, MainMoney money)
{
    const MainMoneyView shown(money);
    const bool main = s.currencyId == 0;
    // The main currency's own amounts are lev figures like the values.
    const auto amount = [&](double value) { return main ? shown.text(value) : amountText(value); };
    CashRow row;
    row[0] = idText(s.currencyId);
    row[1] = name;
    row[2] = amount(s.amountInStock);
    if (main) {
        row[3] = shown.text(s.valueInStock);
        row[4] = "1.000000";
    } else if (name == kEuroName) {
        // The euro is worth its fixed rate, whatever was typed for it.
        row[3] = shown.text(s.amountInStock * kLevsPerEuro);
        row[4] = rateText(kLevsPerEuro);
    } else {
        // Without paid records the rate is undefined; the value is then shown as zero.
        const double value = std::isnan(s.averagedRate) ? 0.0 : s.amountInStock * s.averagedRate;
        row[3] = shown.text(value);
        row[4] = s.amountInStock != 0.0 && s.valueInStock != 0.0 ? rateText(s.averagedRate) : "n/a";
    }
    row[5] = idText(s.recordCount);
    row[6] = amount(s.incomeAmount);
    row[7] = amount(s.expenseAmount);
    return row;
}

std::vector<CashRow> cashRows(const CFinoraDoc& doc, const Settings& settings)
{
    std::vector<CurrencySummary> summaries(1);
    const std::vector<std::string> names = currencyNames(doc);
    std::unordered_map<std::int32_t, std::size_t> slot{{0, 0}}; // first currency with each id
    for (const Currency& c : doc.ledger().currencies) {
        slot.emplace(c.id(), summaries.size()); // a repeated id keeps the first
        summaries.emplace_back().currencyId = c.id();
    }
    for (const Operation& op : doc.ledger().operations) {
        const auto it = slot.find(op.currencyId());
        if (it != slot.end()) {
            addRecord(summaries[it->second], op);
        }
    }
    std::vector<CashRow> rows;
    rows.reserve(summaries.size());
    for (std::size_t i = 0; i < summaries.size(); ++i) {
        // A currency that repeats an earlier id shows that one's figures, as lookups do.
        CurrencySummary shown = summaries[slot.at(summaries[i].currencyId)];
        finish(shown, doc, settings);
        rows.push_back(cashRow(shown, names[i], settings.mainMoney()));
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const CashRow& a, const CashRow& b) { return a[1] < b[1]; });
    return rows;
}

} // namespace finora
