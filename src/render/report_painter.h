#pragma once

#include "core/query/operations_list.h"
#include "core/reports/print_layout.h"
#include "core/settings/settings.h"

#include <functional>

class QPagedPaintDevice;

namespace finora {

// Told before each page is painted, with its number and the count; false stops the painting
// there (the pages already painted stay).
using ReportProgress = std::function<bool(int page, int pages)>;

// The pages to paint, numbered from 1; `last` 0 means to the end.
struct ReportPages {
    int first = 1;
    int last = 0;
};

// Paints the report's pages, laid out by the core, on a printer, a preview or a PDF writer:
// QtGui only, so finora-cli draws the very same pages without widgets. The page size and
// orientation are the device's. Returns the number of pages painted (0 for an empty list).
int paintReport(QPagedPaintDevice& device, const OperationsList& list, const ReportContext& context,
                const Settings& settings, bool selectionOnly, const ReportProgress& progress = {},
                ReportPages pages = {});

} // namespace finora
