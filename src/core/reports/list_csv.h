#pragma once

#include "core/query/operations_list.h"
#include "core/settings/settings.h"

#include <ostream>
#include <vector>

namespace finora {

// The list as CSV after RFC 4180: a header line, then one line a row in list order, UTF-8,
// lines ended by CRLF, a field quoted only when it holds a comma, a quote or a line break.
void writeListCsv(std::ostream& out, const OperationsList& list, const std::vector<int>& columns);

// Every column in order, the id columns included: what a script gets from finora-cli export.
std::vector<int> allListColumns();
// The columns the window shows now, in order: the user's hidden ones and the id columns left out.
std::vector<int> shownListColumns(const Settings& settings);

} // namespace finora
