#pragma once

#include "core/query/operations_list.h"
#include "core/settings/settings.h"

#include <ostream>
#include <vector>

namespace finora {

// The list as CSV after RFC 4180: a header line, then one line a row in list order, UTF-8,
// lines ended by CRLF, a field quoted only when it holds a comma, a quote or a line break.
void writeListCsv(std::ostream& out, const OperationsList& list, const std::vector<int>& columns);

// Every column in order, the id columns included: what finora-cli export and the desktop
// program's "Запиши списъка като CSV ..." write, whatever the window hides, so a script reads
// either file the same way.
std::vector<int> allListColumns();

} // namespace finora
