#pragma once

#include "core/reports/yearly_summary.h"
#include "render/chart.h"

#include <memory>

namespace finora {

// A fresh chart component set up for one year's income (green) and expense (red) by month:
// the desktop program's dialog and finora-cli's picture draw this same chart.
std::unique_ptr<Chart> makeYearlyChart(const YearlySummary& summary, int year);

} // namespace finora
