#include "query/filter_criteria.h"

#include "model/finora_doc.h"
#include "text/cp1251.h"

namespace finora {

const std::string& allCurrenciesItem()
{
    static const std::string item = cp1251::fromUtf8OrThrow(":: ВСИЧКИ ВАЛУТИ В BGL ::");
    return item;
}

bool FilterCriteria::allCurrencies() const
{
    return currency.empty() || currency == allCurrenciesItem();
}

int typeFilterFromText(std::string_view utf8)
{
    for (int i = 0; i < 3; ++i) {
        if (utf8 == kTypeChoices[i]) {
            return i;
        }
    }
    return 0;
}

void resetCriteria(FilterCriteria& criteria, const CFinoraDoc& doc, const DateTime& now)
{
    criteria.categories.clear();
    DateTime earliest = now;
    DateTime latest = now;
    for (const Operation& op : doc.ledger().operations) {
        if (op.date() < earliest) {
            earliest = op.date();
        }
        if (op.date() > latest) {
            latest = op.date();
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
