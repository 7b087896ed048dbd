#pragma once

#include "core/model/document_host.h"

#include <QCoreApplication>
#include <optional>

class QWidget;

namespace finora {

// File dialogs and ending the program, for the desktop program.
class QtDocumentHost final : public DocumentHost {
    Q_DECLARE_TR_FUNCTIONS(finora::QtDocumentHost)

public:
    explicit QtDocumentHost(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }
    std::optional<std::string> chooseSavePath(const std::string& folder) override;
    std::optional<std::string> chooseOpenPath(const std::string& caption,
                                              const std::string& folder) override;
    std::optional<std::string> chooseExportPath(const ExportRequest& request) override;
    std::optional<std::string> chooseImportPath(const ExportRequest& request) override;
    // Leaves the event loop with `status`; asked before the loop runs, main() returns it.
    // Either way every destructor runs, so queued backups are finished and locks let go.
    void exitProgram(int status) override;
    std::optional<int> exitRequested() const { return m_exitStatus; }

    static const char* const kLedgerFilter;

private:
    QWidget* m_parent;
    std::optional<int> m_exitStatus;
};

} // namespace finora
