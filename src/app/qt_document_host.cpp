#include "app/qt_document_host.h"

#include <QCoreApplication>
#include <QFileDialog>

#include <cstdlib>

namespace finora {

const char* const QtDocumentHost::kLedgerFilter = "Файлове на Finora (*.fnr);;Всички файлове (*.*)";

std::optional<std::string> QtDocumentHost::chooseSavePath()
{
    // No default extension: a name typed without ".fnr" is saved as typed.
    const QString path = QFileDialog::getSaveFileName(m_parent, QString(), QString(),
                                                      QString::fromUtf8(kLedgerFilter));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return path.toStdString();
}

std::optional<std::string> QtDocumentHost::chooseExportPath(const ExportRequest& request)
{
    const QString path = QFileDialog::getSaveFileName(m_parent, QString::fromStdString(request.title),
                                                      QString::fromStdString(request.folder),
                                                      QString::fromStdString(request.filter));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return path.toStdString();
}

void QtDocumentHost::exitProgram(int status)
{
    // The refusal of a file ends the whole program at once, asking nothing more.
    std::exit(status);
}

} // namespace finora
