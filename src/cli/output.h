#pragma once

#include "core/model/ledger.h"
#include "core/query/operations_list.h"
#include "core/reports/currency_cash.h"
#include "core/reports/yearly_summary.h"
#include "core/storage/filter_file.h"
#include "core/storage/ledger_import.h"

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace finora::cli {

// What the reading commands print: UTF-8, as JSON where asked for (or always, for those that
// have no other form), each JSON document on one line.

std::string utf8(std::string_view cp1251Text);

void writeInfo(std::ostream& out, const std::string& path, const Ledger& ledger, double version,
               bool json);
void writeDump(std::ostream& out, const Ledger& ledger, double version);
void writeList(std::ostream& out, const OperationsList& list, bool json);
void writeCash(std::ostream& out, const std::vector<CashRow>& rows, MainMoney money, bool json);
void writeYear(std::ostream& out, int year, bool hasData, const YearlySummary& summary);
void writeFilter(std::ostream& out, const StoredFilter& filter);
void writeImport(std::ostream& out, const ImportResult& result, bool json);

} // namespace finora::cli
