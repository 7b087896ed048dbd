#pragma once

// CSV records and the cells of a layout, shared by the reader and the guess.
#include "core/model/result.h"
#include "core/statements/csv_layout.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace finora::statement_readers {

// How much of a file its layout is guessed from: enough lines for any preamble and header.
constexpr std::size_t kSampleBytes = std::size_t{256} * 1024;

struct CsvRecord {
    std::vector<std::string> fields;
    std::size_t line = 0; // where the record starts
};

// Splits decoded text into records. A quoted field may hold the separator, doubled quotes and
// line breaks. With `stopAt`, only that many records are read (for a guess over the first lines,
// which also forgives a quote left open there).
Result<std::vector<CsvRecord>, StatementReadError> splitCsv(std::string_view text, char separator,
                                                            char quote, std::size_t stopAt = 0);

// A date in a layout's format: d, dd, M, MM, yy, yyyy and literal characters; what follows it
// after a blank or a "T" (a time) is ignored.
bool parseCsvDate(std::string_view text, std::string_view format, int& year, int& month, int& day);

// The 0-based index of a column in `header`, or nullopt when it is not there.
std::optional<std::size_t> columnIndex(const CsvColumn& column,
                                       const std::vector<std::string>& header);

} // namespace finora::statement_readers
