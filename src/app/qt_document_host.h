#pragma once

#include "model/document_host.h"

class QWidget;

namespace finora {

// Save dialogs and ending the program, for the desktop program.
class QtDocumentHost final : public DocumentHost {
public:
    explicit QtDocumentHost(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }
    std::optional<std::string> chooseSavePath() override;
    std::optional<std::string> chooseExportPath(const ExportRequest& request) override;
    void exitProgram(int status) override;

    static const char* const kLedgerFilter;

private:
    QWidget* m_parent;
};

} // namespace finora
