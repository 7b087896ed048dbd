#pragma once

#include "core/model/finora_doc.h"

#include <cstdint>
#include <string>
#include <vector>

namespace finora {

// One category as the editors' trees show it, in pre-order: a depth and a name.
struct CategoryNode {
    std::int32_t id = 0;
    int depth = 0;                     // 0 for a top-level category
    const std::string* name = nullptr; // Windows-1251, owned by the ledger
};

// The lists the choosers offer, one builder each for every view.

// How siblings follow each other: as the ledger lists them (the editors), or by name (the
// filter panel, where a long list is searched by eye).
enum class SiblingOrder { Ledger, Name };

// Top-level categories, each followed depth first by its children, siblings in `order`. A
// category whose parent is not in the ledger (only a hand-made file has one) comes at the end
// as a top-level item rather than vanishing; a repeated id appears once. One pass with an
// explicit stack: any depth, any size, linear.
std::vector<CategoryNode> categoryTree(const CFinoraDoc& doc,
                                       SiblingOrder order = SiblingOrder::Ledger);

// The currencies a chooser offers, Windows-1251: the main currency first, then the ledger's in
// its order; or, by name, all of them sorted with repeats dropped.
std::vector<std::string> currencyNames(const CFinoraDoc& doc,
                                       SiblingOrder order = SiblingOrder::Ledger);

} // namespace finora
