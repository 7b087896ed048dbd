#pragma once

#include "query/operations_list.h"
#include "reports/print_layout.h"
#include "settings/settings.h"

class QPagedPaintDevice;

namespace finora {

// Paints the report's pages, laid out by the core, on a printer, a preview or a PDF writer:
// QtGui only, so finora-cli draws the very same pages without widgets. The page size and
// orientation are the device's. Returns the number of pages painted (0 for an empty list).
int paintReport(QPagedPaintDevice& device, const OperationsList& list, const ReportContext& context,
                const Settings& settings, bool selectionOnly);

} // namespace finora
