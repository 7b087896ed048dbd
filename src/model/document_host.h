#pragma once

#include <optional>
#include <string>

namespace finora {

// What only the surrounding program can do for the document: ask for a file name, and end.
class DocumentHost {
public:
    virtual ~DocumentHost() = default;
    // A save dialog with the ledger filter and an overwrite question; nullopt when cancelled.
    virtual std::optional<std::string> chooseSavePath() = 0;
    // An open dialog with the ledger filter, titled `caption` (UTF-8, empty for the usual
    // title); nullopt when cancelled.
    virtual std::optional<std::string> chooseOpenPath(const std::string& caption) = 0;
    // Ends the whole program with `status` once control returns to it; the caller stops at once.
    virtual void exitProgram(int status) = 0;
};

} // namespace finora
