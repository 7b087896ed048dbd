#pragma once

#include "settings/settings_store.h"

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
};

// Runs one command line (without the program name). Output is UTF-8; errors go to `err` as one
// Bulgarian line. The user's options are read from `userSettings` and never written.
int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
        const SettingsStore& userSettings);

} // namespace finora::cli
