#pragma once

#include "core/categorise/category_rules.h"
#include "core/model/finora_doc.h"
#include "core/settings/settings.h"
#include "core/statements/statement_entry.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace finora {

// What the user decides for a whole statement before it is added.
struct StatementImportOptions {
    std::string fileCurrency;            // the code of entries that name none; empty: the main one
    std::map<std::string, double> rates; // leva for one unit, by code, as the user gave them
    std::int32_t category = 0;           // for every line; 0: a category of the import's own
};

// What becomes of one entry.
enum class LineState {
    New,       // added
    Duplicate, // already in the ledger, from an earlier import
    NotAdded,  // see the reason
    Unchosen,  // the user unticked it
};

// One entry as it will be stored: the operation editor's fields, texts in Windows-1251.
struct ImportLine {
    std::size_t entry = 0; // its place in the statement
    LineState state = LineState::New;
    std::string reason; // UTF-8: why it is not added
    std::string note;   // UTF-8: characters that were dropped from its texts
    std::string key;    // how the entry is known again (see docs/design-notes.md)
    DateTime date;
    std::int32_t type = kIncome;
    std::int64_t amountCents = 0; // without sign
    std::string currency;         // the ledger's name: "BGL" for the main currency
    double rate = 1.0;            // leva for one unit
    std::string description;
    std::string notes;
    std::int32_t category = 0; // 0: the import's own category
    // Where the category came from when the import filed the line itself.
    SuggestionSource categorySource = SuggestionSource::None;
};

struct ImportPlan {
    std::vector<ImportLine> lines; // in the statement's order
    // Codes of currencies that have no rate, given or suggested: their lines are not added.
    std::vector<std::string> missingRates;

    std::size_t count(LineState state) const;
    // The lines that would be added, by currency name, in amount cents with sign.
    std::map<std::string, std::int64_t> totals() const;
};

// Decides, for every entry, whether and how it is added. Reads the document only.
ImportPlan planStatementImport(const CFinoraDoc& doc, const Settings& settings,
                               const std::vector<StatementEntry>& entries,
                               const StatementImportOptions& options);

struct ImportOutcome {
    std::size_t added = 0;
    std::string category; // the import's own category (Windows-1251) when one was made
};

// Adds the plan's new lines as one command of the document: one step of the history, named for
// the import, and one save after it. Missing currencies and the import's own category are made
// in the same step; the companion learns each added entry. The caller tests the lock.
ImportOutcome applyStatementImport(CFinoraDoc& doc, const ImportPlan& plan);

// "Извлечение 24.11.2026 12:30": the import's own category, named for when it was made.
std::string statementCategoryName(const DateTime& now);

} // namespace finora
