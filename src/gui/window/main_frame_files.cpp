// The main window's files: new, open (by dialog, by name, dropped, recent), save, import and
// the exports.
#include "core/model/lock_guard.h"
#include "core/reports/list_csv.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_import.h"
#include "gui/dialogs/statement_import_dialog.h"
#include "gui/window/main_frame.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMenu>
#include <QMimeData>
#include <sstream>

namespace finora {

bool CMainFrame::newLedger()
{
    if (!m_storage.saveModified()) {
        return false;
    }
    m_storage.closeDocument();
    m_doc.setUnlocked(false);
    m_view->resetFilter();
    return true;
}

bool CMainFrame::openLedger(const QString& path)
{
    if (!m_storage.saveModified()) {
        return false;
    }
    const auto result = m_storage.open(path.toStdString());
    if (result == DocumentStorage::OpenResult::Cancelled) {
        return false; // the ledger that was open stays as it was
    }
    m_doc.setUnlocked(false);
    m_view->resetFilter();
    if (result != DocumentStorage::OpenResult::Opened) {
        return false;
    }
    m_settings.addRecentFile(path.toStdString());
    afterOpen();
    return true;
}

void CMainFrame::afterOpen()
{
    if (m_doc.isLocked()) {
        tellProtected(m_prompter);
    }
    if (m_settings.isOn(IntSetting::ShowForTodayOnOpen)) {
        todayOnly(m_view->list().criteria(), m_doc.clock().now());
        m_view->filterPanel().showCriteria();
        m_view->refresh();
    }
}

bool CMainFrame::startUp(const QStringList& arguments)
{
    // The desktop opens filter files with Finora too: the ledger the program would open anyway,
    // seen through that filter. A filter that cannot be read is said so, and start-up goes on.
    const bool filterFile = arguments.size() > 1 &&
                            arguments.at(1).endsWith(QStringLiteral(".ffl"), Qt::CaseInsensitive);
    if (arguments.size() > 1 && !filterFile) {
        // Absolute, so the recent-file list and the ledger reopened at the next start still
        // name it when the program is started from another folder.
        return openLedger(QFileInfo(arguments.at(1)).absoluteFilePath());
    }
    const std::string last = m_settings.text(TextSetting::LastFileUsed);
    if (m_settings.isOn(IntSetting::AutoOpen) && !last.empty()) {
        openLedger(QString::fromStdString(last));
    }
    if (filterFile) {
        m_view->filterPanel().loadFilterFrom(arguments.at(1));
    }
    return true;
}

QStringList CMainFrame::recentFiles() const
{
    QStringList files;
    for (const std::string& path : m_settings.recentFiles()) {
        files << QString::fromStdString(path);
    }
    return files;
}

void CMainFrame::fillRecentMenu()
{
    m_recentMenu->clear();
    int n = 1;
    for (const QString& path : recentFiles()) {
        QAction* open = m_recentMenu->addAction(tr("&%1 %2").arg(QString::number(n++), path));
        connect(open, &QAction::triggered, this, [this, path] { openLedger(path); });
    }
    m_recentMenu->setEnabled(!m_recentMenu->isEmpty());
}

void CMainFrame::openWithDialog()
{
    if (const auto path = m_host.chooseOpenPath({}, folderOf(m_doc.path()))) {
        openLedger(QString::fromStdString(*path));
    }
}

void CMainFrame::save()
{
    m_storage.saveCommand();
    updateTitle();
}

void CMainFrame::saveAs()
{
    if (const auto path = m_host.chooseSavePath(folderOf(m_doc.path()))) {
        m_storage.save(*path);
    }
    updateTitle();
}

bool CMainFrame::readChosenFile(const std::string& path, std::string& bytes)
{
    FileError error = FileError::None;
    if (readWholeFile(path, bytes, &error)) {
        return true;
    }
    m_prompter.error(tr("Файлът „%1“ не може да бъде отворен.\n%2")
                         .arg(QString::fromStdString(path), QString::fromStdString(describe(error)))
                         .toStdString());
    return false;
}

void CMainFrame::importLedgerFile()
{
    if (refuseWhenLocked(m_doc, m_prompter)) {
        return;
    }
    const auto path = m_host.chooseOpenPath(
        tr("Импортиране на данни от друг документ").toStdString(), folderOf(m_doc.path()));
    if (!path) {
        return;
    }
    finora::importLedgerFile(m_doc, *path, m_prompter);
    m_view->filterPanel().showCriteria();
    m_view->refresh();
}

void CMainFrame::importStatement()
{
    if (refuseWhenLocked(m_doc, m_prompter)) {
        return;
    }
    const std::string folder =
        m_doc.path().empty() ? std::string()
                             : QFileInfo(QString::fromStdString(m_doc.path())).path().toStdString();
    const auto path =
        m_host.chooseImportPath({tr("Импортиране на банково извлечение").toStdString(),
                                 tr(kStatementFilter).toStdString(), folder});
    if (!path) {
        return;
    }
    std::string bytes;
    if (!readChosenFile(*path, bytes)) {
        return;
    }
    // A CSV file is read under a guessed layout, which the preview then lets the user correct.
    StatementReadOptions options;
    options.format = detectStatementFormat(bytes);
    if (options.format == StatementFormat::Csv) {
        options.csvLayout = guessCsvLayout(bytes);
    }
    auto read = readStatement(bytes, options);
    if (!read) {
        m_prompter.error(tr("Файлът „%1“ не може да бъде прочетен като банково извлечение.\n%2: %3")
                             .arg(QString::fromStdString(*path),
                                  QString::fromStdString(read.error().where),
                                  QString::fromStdString(read.error().reason))
                             .toStdString());
        return;
    }
    StatementImportDialog preview(m_doc, m_learned, m_settings, std::move(bytes), read.value(),
                                  options, this);
    if (preview.exec() != QDialog::Accepted || preview.plan().count(LineState::New) == 0) {
        return;
    }
    applyStatementImport(m_doc, preview.plan());
    m_view->filterPanel().showCriteria();
    m_view->refresh();
}

std::optional<std::string> CMainFrame::chooseExportFile(const QString& title, const char* filter,
                                                        std::string_view extension)
{
    std::optional<std::string> path =
        m_host.chooseExportPath({title.toStdString(), filter, folderOf(m_doc.path())});
    if (path && !QString::fromStdString(*path).endsWith(QString::fromLatin1(extension),
                                                        Qt::CaseInsensitive)) {
        *path += extension;
    }
    return path;
}

void CMainFrame::exportReportPdf()
{
    const auto path = chooseExportFile(tr("Запиши справката като PDF"), "PDF (*.pdf)", ".pdf");
    if (path && m_report.exportPdf(QString::fromStdString(*path), this) ==
                    ReportPrinter::PdfResult::Failed) {
        m_prompter.error(tr("Справката не беше записана в %1.")
                             .arg(QString::fromStdString(*path))
                             .toStdString());
    }
}

void CMainFrame::exportListCsv()
{
    const auto path = chooseExportFile(tr("Запиши списъка като CSV"), "CSV (*.csv)", ".csv");
    if (!path) {
        return;
    }
    std::ostringstream csv;
    writeListCsv(csv, m_view->list(), allListColumns());
    FileError error = FileError::None;
    if (!writeFileAtomically(*path, csv.str(), &error)) {
        m_prompter.error(
            tr("Списъкът не беше записан в „%1“.\n%2")
                .arg(QString::fromStdString(*path), QString::fromStdString(describe(error)))
                .toStdString());
    }
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void CMainFrame::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.first().isLocalFile()) {
        openLedger(urls.first().toLocalFile());
    }
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    if (m_storage.saveModified()) {
        event->accept();
    } else {
        event->ignore();
    }
}

} // namespace finora
