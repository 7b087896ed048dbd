#pragma once

#include "core/model/finora_doc.h"
#include "core/query/filter_criteria.h"

#include <vector>

namespace finora {

// The filter test of one refresh, prepared once: the period bounds, the currency id and the set
// of categories that pass (with their subcategories at any depth when asked) are worked out
// before the walk, so each entry costs a few comparisons and one lookup.
class FilterMatcher {
public:
    FilterMatcher(const FilterCriteria& criteria, const CFinoraDoc& doc, bool includeSubcategories);

    // Paid state, type, categories, period, currency: the first test that fails rejects.
    bool matches(const Operation& op) const;

private:
    bool categoryPasses(std::int32_t category) const;

    int m_paidState;
    int m_typeFilter;
    bool m_anyCategory;
    std::vector<std::int32_t> m_categories; // sorted
    double m_from = 0.0;
    double m_to = 0.0;
    bool m_periodValid = false;
    bool m_allCurrencies;
    std::int32_t m_currencyId = -1;
};

} // namespace finora
