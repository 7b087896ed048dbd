#pragma once

#include "core/companion/companion.h"

#include <string>
#include <string_view>

namespace finora {

// The companion of "Семейство.fnr" is "Семейство.finora.json" in the same folder; a ledger
// named without the ".fnr" ending gets the ending appended.
std::string companionPathFor(const std::string& ledgerPath);

// The file's own version. A file of a later version is left as it is, never written over.
inline constexpr int kCompanionVersion = 1;

struct CompanionReadResult {
    enum class Status { Ok, Damaged, Newer };
    Status status = Status::Damaged;
    std::string where; // for Damaged: where the text stops making sense ("байт 120", "imported[3]")
};

// Reads the JSON text of a companion file. On anything but Ok, `out` is left empty. Safe on any
// bytes: the nesting is bounded before the text is parsed.
CompanionReadResult readCompanion(std::string_view bytes, Companion& out);

// Human-readable JSON, the same bytes for the same data (entries in operation order).
std::string serializeCompanion(const Companion& companion);

} // namespace finora
