#pragma once

#include "core/query/operations_list.h"
#include "core/reports/print_layout.h"
#include "core/reports/yearly_summary.h"
#include "core/settings/settings.h"
#include "core/settings/settings_store.h"

#include <ostream>
#include <string>
#include <vector>

namespace finora::cli {

// The exit statuses scripts rely on.
enum ExitStatus : int {
    kOk = 0,
    kUsage = 1,
    kUnreadable = 2,
    kNewerFormat = 3,
    kLocked = 4,
    kNotWritten = 5,
    kHeld = 6, // the ledger is open in the desktop program (its lock file); --force overrides
    kBackupNotWritten = 7, // the ledger was written, its backup was not
};

// "report" and "chart" paint with Qt, which this library stays free of: finora-cli hands in a
// renderer that does, and without one the two commands say they are not available.
class Renderer {
public:
    virtual ~Renderer() = default;
    // The printed report of the list on A4 paper, as PDF; false when it cannot be written.
    virtual bool reportPdf(const std::string& path, const OperationsList& list,
                           const ReportContext& context, const Settings& settings,
                           bool landscape) = 0;
    // The yearly income and expense chart, `width` × `height` pixels, as PNG.
    virtual bool chartPng(const std::string& path, const YearlySummary& summary, int year,
                          int width, int height) = 0;
};

// Runs one command line (without the program name). Output is UTF-8; errors go to `err` as one
// Bulgarian line. The user's options are read from `userSettings` and never written.
int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
        const SettingsStore& userSettings, Renderer* renderer = nullptr);

} // namespace finora::cli
