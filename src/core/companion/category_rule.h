#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace finora {

// "Text contains … → category", as the user writes it; the first rule that matches a line wins.
// Kept with the ledger in its companion file, never in the ledger file itself.
struct CategoryRule {
    enum class Match { Contains, StartsWith, Equals };
    Match match = Match::Contains;
    std::string text;      // Windows-1251; compared without regard to case, Cyrillic and Latin
    std::int32_t type = 0; // 1 income or 2 expense only; 0 either
    std::optional<double> minAmount; // the amount without its sign, bounds included
    std::optional<double> maxAmount;
    std::int32_t categoryId = 0; // by id, so renaming the category keeps the rule

    bool operator==(const CategoryRule&) const = default;
};

} // namespace finora
