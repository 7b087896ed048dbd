#pragma once

#include <optional>
#include <string>

namespace finora {

// A save dialog for something written out of the ledger (the list as CSV, the report as PDF).
struct ExportRequest {
    std::string title;  // UTF-8
    std::string filter; // "CSV (*.csv)"
    std::string folder; // where the dialog opens; empty for the program's choice
};

// What only the surrounding program can do for the document: ask for a file name, and end.
class DocumentHost {
public:
    virtual ~DocumentHost() = default;
    // A save dialog with the ledger filter and an overwrite question, opened in `folder` (the
    // open ledger's; empty for the program's choice); nullopt when cancelled.
    virtual std::optional<std::string> chooseSavePath(const std::string& folder) = 0;
    // An open dialog with the ledger filter, titled `caption` (UTF-8, empty for the usual
    // title), opened in `folder`; nullopt when cancelled.
    virtual std::optional<std::string> chooseOpenPath(const std::string& caption,
                                                      const std::string& folder) = 0;
    // A save dialog for an export, with an overwrite question; nullopt when cancelled.
    virtual std::optional<std::string> chooseExportPath(const ExportRequest& request) = 0;
    // An open dialog for a file read into the ledger (a bank statement), with the request's
    // title, filter and folder; nullopt when cancelled.
    virtual std::optional<std::string> chooseImportPath(const ExportRequest& request) = 0;
    // Ends the whole program with `status` once control returns to it; the caller stops at once.
    virtual void exitProgram(int status) = 0;
};

// For programs without windows (finora-cli, the benchmarks): every dialog reads as cancelled,
// and a request to end just ends the command at hand.
class NoDocumentHost final : public DocumentHost {
public:
    std::optional<std::string> chooseSavePath(const std::string&) override { return std::nullopt; }
    std::optional<std::string> chooseOpenPath(const std::string&, const std::string&) override
    {
        return std::nullopt;
    }
    std::optional<std::string> chooseExportPath(const ExportRequest&) override
    {
        return std::nullopt;
    }
    std::optional<std::string> chooseImportPath(const ExportRequest&) override
    {
        return std::nullopt;
    }
    void exitProgram(int) override {}
};

} // namespace finora
