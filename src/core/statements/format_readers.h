#pragma once

// The readers behind readStatement, one per format; each takes the whole file.
#include "core/model/result.h"
#include "core/statements/csv_layout.h"
#include "core/statements/statement_entry.h"

#include <optional>
#include <string>
#include <string_view>

namespace finora::statement_readers {

using ReadResult = Result<Statement, StatementReadError>;

ReadResult readMt940(std::string_view bytes);
ReadResult readCamt053(std::string_view bytes);
ReadResult readOfx(std::string_view bytes);
ReadResult readQif(std::string_view bytes, std::optional<DateOrder> order);
// `layout` has every key set (see guessCsvLayout).
ReadResult readCsv(std::string_view bytes, const CsvLayout& layout);

inline StatementReadError lineError(std::size_t line, std::string reason)
{
    return StatementReadError{"ред " + std::to_string(line), std::move(reason)};
}

} // namespace finora::statement_readers
