#pragma once

#include "core/model/finora_doc.h"
#include "core/query/operations_list.h"
#include "core/reports/print_layout.h"
#include "core/settings/settings.h"

#include <QCoreApplication>
#include <QPrinter>
#include <memory>

class QWidget;

namespace finora {

// Puts the list as it is shown on paper, in a preview or in a PDF file. The layout comes from
// the core; this only maps its 0.1 mm units onto the printer and paints.
class ReportPrinter {
    Q_DECLARE_TR_FUNCTIONS(finora::ReportPrinter)

public:
    static constexpr const char* kPreparingText = QT_TR_NOOP("Подготовка на справката ...");
    static constexpr int kProgressAfterMs = 500;

    ReportPrinter(const CFinoraDoc& doc, const OperationsList& list, const Settings& settings);

    // "&Печат ...": the print dialog, with the choice of printing the selection.
    void print(QWidget* parent);
    // "Предпе&чатен изглед на справката ...". A preview stopped half way says so in its title;
    // the memory of its pages goes back to the system when it closes.
    void preview(QWidget* parent);
    // "Настро&йка на печата ...": paper and orientation for the prints that follow.
    void pageSetup(QWidget* parent);
    // The whole list into a PDF file with the current paper and orientation, showing its
    // progress over `parent`. A stopped or failed export leaves any file at `path` as it was;
    // Failed when the list is empty or the file cannot be written.
    enum class PdfResult { Written, Stopped, Failed };
    PdfResult exportPdf(const QString& path, QWidget* parent);

    QPrinter& printer() { return *m_printer; }

    // Paints the pages the printer's range asks for (every page by default); the number painted.
    int paint(QPrinter& printer, bool selectionOnly) const;
    // The same, with a progress dialog that can stop it and a busy cursor while it works.
    struct Painted {
        int pages = 0;
        int planned = 0; // the pages of the whole report
        bool stopped = false;
    };
    Painted paintShowingProgress(QPrinter& printer, bool selectionOnly, QWidget* parent) const;

private:
    const CFinoraDoc& m_doc;
    const OperationsList& m_list;
    const Settings& m_settings;
    std::unique_ptr<QPrinter> m_printer;
};

} // namespace finora
