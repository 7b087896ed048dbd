#pragma once

#include "core/companion/category_rule.h"
#include "core/model/ledger.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace finora {

class LearnedCategories;

// A line's texts (Windows-1251), its type and its amount in its own currency.
struct CategorisedLine {
    std::string_view description;
    std::string_view notes;
    std::int32_t type = 0;
    double amount = 0.0;
};

// A rule whose category was deleted stays in the list, inactive, until the user removes it.
bool ruleIsActive(const CategoryRule& rule, const Ledger& ledger);
bool ruleMatches(const CategoryRule& rule, const CategorisedLine& line);

enum class SuggestionSource { Rule, Learned, None };
// "rule", "learned", "none": the names the command line prints.
const char* suggestionSourceName(SuggestionSource source);

struct CategorySuggestion {
    std::int32_t categoryId = 0; // the fallback when the source is None
    SuggestionSource source = SuggestionSource::None;
    int rule = -1; // the index of the rule that decided, for Rule
};

// The first active rule that matches, else what the ledger has learned (when `learned` is
// given), else `fallback`.
CategorySuggestion suggestCategory(const Ledger& ledger, const std::vector<CategoryRule>& rules,
                                   const LearnedCategories* learned, const CategorisedLine& line,
                                   std::int32_t fallback);

} // namespace finora
