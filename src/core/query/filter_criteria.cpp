#include "core/query/filter_criteria.h"

#include "core/model/currency.h"
#include "core/model/finora_doc.h"
#include "core/text/cp1251.h"

#include <algorithm>
#include <unordered_set>

namespace finora {

const std::string& allCurrenciesItem()
{
    static const std::string item = cp1251::fromUtf8OrThrow(":: ВСИЧКИ ВАЛУТИ В BGL ::");
    return item;
}

const std::string& allCurrenciesItem(MainMoney money)
{
    static const std::string euro = cp1251::fromUtf8OrThrow(":: ВСИЧКИ ВАЛУТИ В EUR ::");
    return money == MainMoney::Euro ? euro : allCurrenciesItem();
}

std::string currencyChoice(const std::string& shown)
{
    if (shown.empty()) {
        return std::string(kMainCurrencyName);
    }
    return shown == allCurrenciesItem(MainMoney::Euro) ? allCurrenciesItem() : shown;
}

bool FilterCriteria::allCurrencies() const
{
    return currency.empty() || currency == allCurrenciesItem();
}

void boundCategories(FilterCriteria& criteria, const CFinoraDoc& doc)
{
    const auto& categories = doc.ledger().categories;
    std::unordered_set<std::int32_t> seen;
    std::vector<std::int32_t> kept;
    std::size_t unknown = 0;
    for (const std::int32_t id : criteria.categories) {
        const bool known = categories.find(id) != nullptr;
        if ((known || unknown < kUnknownCategoriesKept) && seen.insert(id).second) {
            kept.push_back(id);
            unknown += known ? 0 : 1;
        }
    }
    criteria.categories = std::move(kept);
}

void resetCriteria(FilterCriteria& criteria, const CFinoraDoc& doc, const DateTime& now)
{
    criteria.categories.clear();
    // By the day value alone: an entry whose status says invalid or null (older and hand-made
    // files hold them) is in the scan like any other, and the period it gives is a valid one.
    // A day value no calendar can show stays out of it.
    DateTime earliest(now.days(), DateTime::Valid);
    DateTime latest = earliest;
    DateTimeParts shown;
    for (const Operation& op : doc.ledger().operations) {
        const DateTime day(op.date().days(), DateTime::Valid);
        if ((day < earliest || day > latest) && day.toParts(shown)) {
            earliest = std::min(earliest, day);
            latest = std::max(latest, day);
        }
    }
    criteria.from = earliest;
    criteria.to = latest;
    criteria.typeFilter = 0;
    criteria.currency = allCurrenciesItem();
    criteria.paidState = 0;
}

void todayOnly(FilterCriteria& criteria, const DateTime& now)
{
    criteria.from = now;
    criteria.to = now;
}

} // namespace finora
