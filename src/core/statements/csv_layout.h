#pragma once

#include "core/model/result.h"
#include "core/statements/statement_entry.h"
#include "core/statements/statement_text.h"

#include <optional>
#include <string>
#include <string_view>

namespace finora {

// A column of a CSV statement: by its header's name or by its 1-based number. Neither set means
// the file has no such column.
struct CsvColumn {
    std::string name;
    int number = 0;

    bool present() const { return number > 0 || !name.empty(); }
    bool operator==(const CsvColumn&) const = default;
};

// How a bank writes its CSV statement. Every key is optional: one left out is guessed from the
// file. A guessed layout has every key set.
struct CsvLayout {
    std::optional<statement_text::Encoding> encoding;
    std::optional<char> separator;
    std::optional<char> quote; // '\0' when fields are never quoted
    std::optional<char> decimalMark;
    std::optional<char> thousandsSeparator; // '\0' for none
    std::optional<std::string> dateFormat;  // d, dd, M, MM, yy, yyyy; any other character as is
    std::optional<int> headerLine;          // 1-based; 0 when there is no header
    std::optional<CsvColumn> dateColumn;
    std::optional<CsvColumn> payeeColumn;
    std::optional<CsvColumn> descriptionColumn;
    std::optional<CsvColumn> notesColumn;
    std::optional<CsvColumn> currencyColumn;
    // The amount: a signed column; or a debit and a credit column; or an unsigned amount column
    // with a direction column whose two values say out and in.
    std::optional<CsvColumn> amountColumn;
    std::optional<CsvColumn> debitColumn;
    std::optional<CsvColumn> creditColumn;
    std::optional<CsvColumn> directionColumn;
    std::optional<std::string> debitValue;
    std::optional<std::string> creditValue;
    std::optional<std::string> currency; // for a file without a currency column

    bool operator==(const CsvLayout&) const = default;
};

// The layout file: one JSON object with the keys encoding, separator, quote, decimal_mark,
// thousands_separator, date_format, header_line, date_column, payee_column, description_column,
// notes_column, currency_column, amount_column, debit_column, credit_column, direction_column,
// debit_value, credit_value and currency. A column is a header name or a 1-based number.
Result<CsvLayout, StatementReadError> readCsvLayoutJson(std::string_view json);
std::string writeCsvLayoutJson(const CsvLayout& layout);

// Fills every key `given` leaves out from what the file holds: its encoding, separator, decimal
// mark, date format, header line and the columns by their Bulgarian or English names.
CsvLayout guessCsvLayout(std::string_view bytes, const CsvLayout& given = {});

// The header's fields of a CSV file under a layout, decoded; empty when it has no header line.
// A saved layout is chosen for a file whose header is the one it was saved for.
std::vector<std::string> csvHeaderFields(std::string_view bytes, const CsvLayout& layout);
// Whether a saved layout is the one for a file: the file's header, at the layout's line, holds
// every column the layout names (a layout that names none, or has no header, fits no file).
bool csvLayoutFits(std::string_view bytes, const CsvLayout& layout);

} // namespace finora
