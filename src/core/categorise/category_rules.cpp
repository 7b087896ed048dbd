#include "core/categorise/category_rules.h"

#include "core/categorise/learned_categories.h"
#include "core/text/case_fold.h"

#include <cmath>

namespace finora {
namespace {

std::string_view trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool textMatches(CategoryRule::Match match, const std::string& folded, std::string_view text)
{
    const std::string value = foldCase(trimmed(text));
    switch (match) {
    case CategoryRule::Match::Contains:
        return value.find(folded) != std::string::npos;
    case CategoryRule::Match::StartsWith:
        return value.starts_with(folded);
    case CategoryRule::Match::Equals:
        return value == folded;
    }
    return false;
}

} // namespace

const char* suggestionSourceName(SuggestionSource source)
{
    switch (source) {
    case SuggestionSource::Rule:
        return "rule";
    case SuggestionSource::Learned:
        return "learned";
    case SuggestionSource::None:
        break;
    }
    return "none";
}

bool ruleIsActive(const CategoryRule& rule, const Ledger& ledger)
{
    return ledger.categories.find(rule.categoryId) != nullptr;
}

bool ruleMatches(const CategoryRule& rule, const CategorisedLine& line)
{
    const std::string folded = foldCase(trimmed(rule.text));
    if (folded.empty() || (rule.type != 0 && rule.type != line.type)) {
        return false;
    }
    const double amount = std::fabs(line.amount);
    if ((rule.minAmount && amount < *rule.minAmount) ||
        (rule.maxAmount && amount > *rule.maxAmount)) {
        return false;
    }
    return textMatches(rule.match, folded, line.description) ||
           textMatches(rule.match, folded, line.notes);
}

CategorySuggestion suggestCategory(const Ledger& ledger, const std::vector<CategoryRule>& rules,
                                   const LearnedCategories* learned, const CategorisedLine& line,
                                   std::int32_t fallback)
{
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (ruleIsActive(rules[i], ledger) && ruleMatches(rules[i], line)) {
            return {rules[i].categoryId, SuggestionSource::Rule, static_cast<int>(i)};
        }
    }
    if (learned) {
        if (const auto category = learned->suggest(line.description, line.notes, line.type)) {
            return {*category, SuggestionSource::Learned, -1};
        }
    }
    return {fallback, SuggestionSource::None, -1};
}

} // namespace finora
