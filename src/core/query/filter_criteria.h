#pragma once

#include "core/model/date_time.h"
#include "core/model/euro.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace finora {

class CFinoraDoc;

// The texts of the type selector, in its order; the criteria keep the index.
inline constexpr std::string_view kTypeChoices[] = {"приходи и разходи", "приходи", "разходи"};

// Which operations the main list shows. Texts are Windows-1251, like the ledger's.
struct FilterCriteria {
    DateTime from;        // only its year, month and day count
    DateTime to;          // likewise
    int typeFilter = 0;   // 0 income and expense, 1 income only, 2 expense only
    std::string currency; // a currency code, or the all-currencies item (empty means the same)
    int paidState = 0;    // 0 all, 1 paid only, 2 unpaid only
    std::vector<std::int32_t> categories; // empty: every category

    bool allCurrencies() const;

    bool operator==(const FilterCriteria&) const = default;
};

// ":: ВСИЧКИ ВАЛУТИ В BGL ::" in Windows-1251: what the criteria and filter files hold.
const std::string& allCurrenciesItem();
// The same item as the user sees it in a money mode; in euro mode it names the euro. Only for
// showing: the criteria keep the item above in every mode.
const std::string& allCurrenciesItem(MainMoney money);
// The currency selector's text as the criteria keep it: either form of the all-currencies item is
// the one above, an empty choice the main currency alone, anything else the code itself.
std::string currencyChoice(const std::string& shown);

// "Без филтър": every category, from the earliest to the latest of now and every entry's date,
// income and expense, all currencies, paid or not.
void resetCriteria(FilterCriteria& criteria, const CFinoraDoc& doc, const DateTime& now);
// A category list read from a file, cut to what the ledger can use: each id once, every id the
// ledger knows and the first few it does not (shown with empty names), so a file of millions of
// ids costs no more than the ledger itself.
void boundCategories(FilterCriteria& criteria, const CFinoraDoc& doc);
inline constexpr std::size_t kUnknownCategoriesKept = 64;
// Today's operations only; the rest of the criteria stays.
void todayOnly(FilterCriteria& criteria, const DateTime& now);

} // namespace finora
