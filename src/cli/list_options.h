#pragma once

#include "cli/session.h"
#include "core/query/operations_list.h"
#include "core/storage/filter_file.h"

#include <string>

namespace finora::cli {

// A filter file, or a failure that says why it cannot be used.
StoredFilter loadFilter(const std::string& path);

// The criteria the options describe: "без филтър" values, or those of a filter file, with the
// options given beside it on top.
StoredFilter criteriaFromOptions(Session& s);

// The main window's list after refresh, then the search, then the amount filter.
void buildList(Session& s, OperationsList& list);

} // namespace finora::cli
