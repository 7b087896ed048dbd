#pragma once

#include "core/model/category.h"
#include "core/model/currency.h"
#include "core/model/operation.h"
#include "core/model/record_list.h"

#include <cstdint>
#include <string>

namespace finora {

// The last id handed out of each kind; a new record takes the counter plus one.
struct LedgerCounters {
    std::int32_t nextCurrencyId = 0;
    std::int32_t nextCategoryId = 0;
    std::int32_t nextOperationId = 0;
    std::int32_t nextMasterId = 0;

    bool operator==(const LedgerCounters&) const = default;
};

// Everything a ledger file holds. Only the document changes a ledger it owns; readers fill a
// fresh one and hand it over whole.
struct Ledger {
    RecordList<Currency> currencies;
    RecordList<Category> categories;
    RecordList<Operation> operations;
    LedgerCounters counters;
    std::string lockText;
};

} // namespace finora
