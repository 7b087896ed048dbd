#include "core/importing/import_categories.h"

#include "core/categorise/learned_categories.h"

namespace finora {

void categoriseImportPlan(const CFinoraDoc& doc, const LearnedCategories* learned, ImportPlan& plan)
{
    for (ImportLine& line : plan.lines) {
        if (line.category != 0) {
            continue;
        }
        const CategorisedLine text{line.description, line.notes, line.type,
                                   static_cast<double>(line.amountCents) / 100.0};
        const CategorySuggestion s =
            suggestCategory(doc.ledger(), doc.companion().rules, learned, text, 0);
        line.category = s.categoryId;
        line.categorySource = s.source;
    }
}

} // namespace finora
