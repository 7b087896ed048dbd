#include "gui/window/report_printer.h"

#include "core/storage/file_io.h"
#include "render/report_painter.h"

#include <QFile>
#include <QGuiApplication>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QProgressDialog>
#include <algorithm>
#include <filesystem>
#include <system_error>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace finora {

ReportPrinter::ReportPrinter(const CFinoraDoc& doc, const OperationsList& list,
                             const Settings& settings)
    : m_doc(doc), m_list(list), m_settings(settings),
      m_printer(std::make_unique<QPrinter>(QPrinter::HighResolution))
{}

namespace {

// The pages the print dialog asked for; all of them unless a range was chosen.
ReportPages chosenPages(const QPrinter& printer)
{
    if (printer.printRange() == QPrinter::PageRange && printer.fromPage() > 0) {
        return {printer.fromPage(), printer.toPage()};
    }
    return {};
}

} // namespace

int ReportPrinter::paint(QPrinter& printer, bool selectionOnly) const
{
    return paintReport(printer, m_list, reportContext(m_doc, m_list), m_settings, selectionOnly, {},
                       chosenPages(printer));
}

ReportPrinter::Painted ReportPrinter::paintShowingProgress(QPrinter& printer, bool selectionOnly,
                                                           QWidget* parent) const
{
    // A report of a hundred thousand rows is two thousand pages: the user sees how far it has
    // come and may stop it, and the window is not frozen meanwhile.
    QProgressDialog progress(tr(kPreparingText), tr("Отказ"), 0, 1, parent);
    progress.setObjectName(QStringLiteral("reportProgress"));
    progress.setWindowTitle(tr("Справка"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(kProgressAfterMs);
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    Painted painted;
    painted.pages = paintReport(
        printer, m_list, reportContext(m_doc, m_list), m_settings, selectionOnly,
        [&](int page, int count) {
            painted.planned = count;
            progress.setMaximum(count);
            progress.setLabelText(tr(kPreparingText) + QLatin1Char('\n') +
                                  tr("страница %1 от %2").arg(page).arg(count));
            progress.setValue(page - 1);
            painted.stopped = progress.wasCanceled();
            return !painted.stopped;
        },
        chosenPages(printer));
    QGuiApplication::restoreOverrideCursor();
    return painted;
}

void ReportPrinter::print(QWidget* parent)
{
    QPrintDialog dialog(m_printer.get(), parent);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, m_list.selectedCount() > 0);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, true);
    const bool landscape = m_printer->pageLayout().orientation() == QPageLayout::Landscape;
    dialog.setMinMax(
        1, std::max(
               1, planReport(m_list.rowCount(), m_list.selectedCount(), false, landscape).maxPage));
    if (dialog.exec() == QDialog::Accepted) {
        const Painted painted = paintShowingProgress(
            *m_printer, m_printer->printRange() == QPrinter::Selection, parent);
        if (painted.pages == 0 || painted.stopped || m_printer->printerState() == QPrinter::Error) {
            m_printer->abort(); // a stopped job is not half printed
        }
    }
}

void ReportPrinter::preview(QWidget* parent)
{
    {
        // A printer of its own: Qt keeps a preview's page pictures in the printer until its next
        // preview, and the program's printer lives as long as the window.
        QPrinter printer(QPrinter::HighResolution);
        printer.setPrinterName(m_printer->printerName());
        printer.setPageLayout(m_printer->pageLayout());
        printer.setColorMode(m_printer->colorMode());
        QPrintPreviewDialog dialog(&printer, parent);
        const QString title = tr("Предпечатен изглед на справката");
        QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                         [this, &dialog, title](QPrinter* printer) {
                             const Painted painted = paintShowingProgress(*printer, false, &dialog);
                             dialog.setWindowTitle(
                                 painted.stopped ? tr("%1 (непълен: спрян след %2 от %3 страници)")
                                                       .arg(title)
                                                       .arg(painted.pages)
                                                       .arg(painted.planned)
                                                 : title);
                         });
        dialog.resize(900, 700);
        dialog.exec();
        m_printer->setPageLayout(printer.pageLayout()); // the preview's paper and orientation stay
    }
    // A preview of a million rows holds gigabytes of page pictures; freed, they would stay with
    // the allocator and the program would keep that size until it ends.
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

void ReportPrinter::pageSetup(QWidget* parent)
{
    QPageSetupDialog dialog(m_printer.get(), parent);
    dialog.exec();
}

ReportPrinter::PdfResult ReportPrinter::exportPdf(const QString& path, QWidget* parent)
{
    // Written beside the target and moved over it only when whole: a stop or a failure half way
    // leaves an earlier file of that name untouched.
    const QString part = path + QStringLiteral(".part");
    Painted painted;
    {
        QPrinter pdf(QPrinter::HighResolution);
        pdf.setOutputFormat(QPrinter::PdfFormat);
        pdf.setOutputFileName(part);
        pdf.setPageLayout(m_printer->pageLayout());
        pdf.setCreator(QStringLiteral("Finora"));
        pdf.setDocName(tr("Справка"));
        painted = paintShowingProgress(pdf, false, parent);
    }
    std::error_code error;
    if (painted.pages > 0 && !painted.stopped) {
        std::filesystem::rename(pathFromUtf8(part.toStdString()), pathFromUtf8(path.toStdString()),
                                error);
        if (!error) {
            return PdfResult::Written;
        }
    }
    QFile::remove(part);
    return painted.stopped ? PdfResult::Stopped : PdfResult::Failed;
}

} // namespace finora
