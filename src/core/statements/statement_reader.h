#pragma once

#include "core/model/result.h"
#include "core/statements/csv_layout.h"
#include "core/statements/statement_entry.h"

#include <optional>
#include <string_view>

namespace finora {

struct StatementReadOptions {
    std::optional<StatementFormat> format; // none: told from the bytes
    CsvLayout csvLayout;                   // keys left out are guessed
    std::optional<DateOrder> dateOrder;    // for QIF's dates; none: told from the dates
};

// What the bytes look like: a CAMT.053 or OFX document, QIF, MT940, and CSV for anything else.
StatementFormat detectStatementFormat(std::string_view bytes);

// "csv", "camt053", "ofx", "qif", "mt940": the names the command line uses.
std::string_view statementFormatName(StatementFormat format);
std::optional<StatementFormat> statementFormatFromName(std::string_view name);

// Reads every entry of a bank statement, or says where the file broke. Bounded by the bytes it
// is given: hostile input gives an error, never a crash or a runaway.
Result<Statement, StatementReadError> readStatement(std::string_view bytes,
                                                    const StatementReadOptions& options = {});

} // namespace finora
