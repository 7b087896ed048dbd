#include "gui/window/qt_document_host.h"

#include <QCoreApplication>
#include <QFileDialog>

namespace finora {

const char* const QtDocumentHost::kLedgerFilter =
    QT_TR_NOOP("Файлове на Finora (*.fnr);;Всички файлове (*.*)");

std::optional<std::string> QtDocumentHost::chooseSavePath(const std::string& folder)
{
    // No default extension: a name typed without ".fnr" is saved as typed.
    const QString path = QFileDialog::getSaveFileName(
        m_parent, QString(), QString::fromStdString(folder), tr(kLedgerFilter));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return path.toStdString();
}

std::optional<std::string> QtDocumentHost::chooseOpenPath(const std::string& caption,
                                                          const std::string& folder)
{
    const QString path =
        QFileDialog::getOpenFileName(m_parent, QString::fromStdString(caption),
                                     QString::fromStdString(folder), tr(kLedgerFilter));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return path.toStdString();
}

std::optional<std::string> QtDocumentHost::chooseExportPath(const ExportRequest& request)
{
    const QString path = QFileDialog::getSaveFileName(
        m_parent, QString::fromStdString(request.title), QString::fromStdString(request.folder),
        QString::fromStdString(request.filter));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return path.toStdString();
}

std::optional<std::string> QtDocumentHost::chooseImportPath(const ExportRequest& request)
{
    const QString path = QFileDialog::getOpenFileName(
        m_parent, QString::fromStdString(request.title), QString::fromStdString(request.folder),
        QString::fromStdString(request.filter));
    if (path.isEmpty()) {
        return std::nullopt;
    }
    return path.toStdString();
}

void QtDocumentHost::exitProgram(int status)
{
    // The refusal of a file ends the whole program, asking nothing more, but through the
    // event loop's own way out rather than std::exit: the backup writer then finishes what it
    // was given and the lock beside the ledger is removed.
    m_exitStatus = status;
    QCoreApplication::exit(status);
}

} // namespace finora
