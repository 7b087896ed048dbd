#include "app/report_printer.h"

#include "app/report_painter.h"

#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>

namespace finora {

ReportPrinter::ReportPrinter(const CFinoraDoc& doc, const OperationsList& list, const Settings& settings)
    : m_doc(doc), m_list(list), m_settings(settings), m_printer(std::make_unique<QPrinter>(QPrinter::HighResolution))
{
}

int ReportPrinter::paint(QPrinter& printer, bool selectionOnly) const
{
    return paintReport(printer, m_list, reportContext(m_doc, m_list), m_settings, selectionOnly);
}

void ReportPrinter::print(QWidget* parent)
{
    QPrintDialog dialog(m_printer.get(), parent);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, m_list.selectedCount() > 0);
    if (dialog.exec() == QDialog::Accepted) {
        paint(*m_printer, m_printer->printRange() == QPrinter::Selection);
    }
}

void ReportPrinter::preview(QWidget* parent)
{
    QPrintPreviewDialog dialog(m_printer.get(), parent);
    dialog.setWindowTitle(QStringLiteral("Предпечатен изглед на справката"));
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [this](QPrinter* printer) { paint(*printer, false); });
    dialog.resize(900, 700);
    dialog.exec();
}

void ReportPrinter::pageSetup(QWidget* parent)
{
    QPageSetupDialog dialog(m_printer.get(), parent);
    dialog.exec();
}

bool ReportPrinter::exportPdf(const QString& path)
{
    QPrinter pdf(QPrinter::HighResolution);
    pdf.setOutputFormat(QPrinter::PdfFormat);
    pdf.setOutputFileName(path);
    pdf.setPageLayout(m_printer->pageLayout());
    pdf.setCreator(QStringLiteral("Finora"));
    pdf.setDocName(QStringLiteral("Справка"));
    return paint(pdf, false) > 0;
}

} // namespace finora
