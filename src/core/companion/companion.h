#pragma once

#include "core/companion/category_rule.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace finora {

// What the ledger keeps of one operation it took from a bank statement: enough to know the
// statement's entry again, and to tell whether the operation is still the one that was added,
// whatever the user has since changed of its category, description, notes or paid flag.
struct ImportedOperation {
    std::int32_t operationId = 0;
    std::int32_t date = 0;        // yyyymmdd, the operation's date when it was added
    std::int64_t amountCents = 0; // the amount in its own currency, without sign
    std::int32_t type = 0;

    bool operator==(const ImportedOperation&) const = default;
};

// The data a ledger keeps beside its ".fnr", whose layout is fixed: one section per feature.
// The document holds it and the storage reads and writes it with the ledger.
struct Companion {
    // Statement entries already added, by the key the import gives each entry.
    std::unordered_map<std::string, ImportedOperation> imported;
    // The user's categorisation rules, in the order they are tried.
    std::vector<CategoryRule> rules;
    // Sections this program does not know (a newer one wrote them), each as the JSON text it
    // was read as, so that saving here does not lose another version's data.
    std::map<std::string, std::string> otherSections;

    bool empty() const { return imported.empty() && rules.empty() && otherSections.empty(); }
    void clear()
    {
        imported.clear();
        rules.clear();
        otherSections.clear();
    }
    bool operator==(const Companion&) const = default;
};

} // namespace finora
