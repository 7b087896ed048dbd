#pragma once

#include "core/importing/statement_import.h"

namespace finora {

class LearnedCategories;

// Files each line left to the import's own category by the ledger's rules, then by what its
// filing teaches (`learned`, when given); a line whose category the user chose keeps it.
void categoriseImportPlan(const CFinoraDoc& doc, const LearnedCategories* learned,
                          ImportPlan& plan);

} // namespace finora
