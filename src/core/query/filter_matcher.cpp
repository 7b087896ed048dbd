#include "core/query/filter_matcher.h"

#include <algorithm>

namespace finora {

FilterMatcher::FilterMatcher(const FilterCriteria& criteria, const CFinoraDoc& doc,
                             bool includeSubcategories)
    : m_paidState(criteria.paidState), m_typeFilter(criteria.typeFilter),
      m_anyCategory(criteria.categories.empty()), m_allCurrencies(criteria.allCurrencies())
{
    m_categories = criteria.categories;
    if (includeSubcategories && !m_anyCategory) {
        const std::vector<std::int32_t> below = doc.descendants(criteria.categories);
        m_categories.insert(m_categories.end(), below.begin(), below.end());
    }
    std::sort(m_categories.begin(), m_categories.end());
    m_categories.erase(std::unique(m_categories.begin(), m_categories.end()), m_categories.end());

    DateTimeParts from;
    DateTimeParts to;
    if (criteria.from.toParts(from) && criteria.to.toParts(to)) {
        m_from = DateTime::fromParts(from.year, from.month, from.day, 0, 0, 0).calendarValue();
        m_to = DateTime::fromParts(to.year, to.month, to.day, 23, 59, 59).calendarValue();
        m_periodValid = true;
    }
    if (!m_allCurrencies) {
        m_currencyId = doc.currencyId(criteria.currency);
    }
}

bool FilterMatcher::categoryPasses(std::int32_t category) const
{
    return m_anyCategory || std::binary_search(m_categories.begin(), m_categories.end(), category);
}

bool FilterMatcher::matches(const Operation& op) const
{
    // The paid tests are lopsided on purpose: "paid only" keeps any non-zero flag, "unpaid only"
    // drops only the value 1.
    if ((m_paidState == 1 && op.paid() == 0) || (m_paidState == 2 && op.paid() == 1)) {
        return false;
    }
    if (op.type() == kIncome && m_typeFilter != 0 && m_typeFilter != 1) {
        return false;
    }
    if (op.type() == kExpense && m_typeFilter != 0 && m_typeFilter != 2) {
        return false;
    }
    if (!categoryPasses(op.categoryId())) {
        return false;
    }
    const double day = op.date().calendarValue();
    if (!m_periodValid || !(day >= m_from && day <= m_to)) {
        return false;
    }
    // A code the ledger does not know (-1) shows nothing.
    return m_allCurrencies || (m_currencyId != -1 && op.currencyId() == m_currencyId);
}

} // namespace finora
