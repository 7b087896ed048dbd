#include "app/report_printer.h"

#include "query/filter_criteria.h"
#include "text/cp1251.h"

#include <QFontDatabase>
#include <QPageSetupDialog>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>

namespace finora {
namespace {

// Arial where the system has it, else its metric twin, so the columns hold the same text.
QString reportFamily()
{
    static const QString family = QFontDatabase::hasFamily(QStringLiteral("Arial"))
                                      ? QStringLiteral("Arial")
                                      : QStringLiteral("Liberation Sans");
    return family;
}

class PageMapper {
public:
    explicit PageMapper(const QPrinter& printer) : m_scale(printer.resolution() / 254.0) {}

    double scale() const { return m_scale; }
    QRectF rect(const ReportRect& r) const
    {
        return QRectF(QPointF(r.left * m_scale, -r.top * m_scale), QPointF(r.right * m_scale, -r.bottom * m_scale));
    }
    QFont font(ReportFont use) const
    {
        const ReportFontSpec spec = reportFont(use);
        QFont f(reportFamily());
        // The height is the whole character cell; Arial's em is about 1/1.15 of it.
        f.setPixelSize(std::max(1, static_cast<int>(spec.height * m_scale / 1.15)));
        f.setBold(spec.bold);
        f.setItalic(spec.italic);
        f.setStyleHint(QFont::SansSerif);
        return f;
    }

private:
    double m_scale; // device pixels per 0.1 mm
};

int alignment(const ReportItem& item)
{
    int flags = Qt::TextSingleLine;
    flags |= item.align == ReportAlign::Left ? Qt::AlignLeft : item.align == ReportAlign::Right ? Qt::AlignRight
                                                                                               : Qt::AlignHCenter;
    flags |= item.font == ReportFont::Table ? Qt::AlignVCenter : Qt::AlignTop;
    return flags;
}

} // namespace

ReportPrinter::ReportPrinter(const CFinoraDoc& doc, const OperationsList& list, const Settings& settings)
    : m_doc(doc), m_list(list), m_settings(settings), m_printer(std::make_unique<QPrinter>(QPrinter::HighResolution))
{
}

ReportContext ReportPrinter::context() const
{
    const FilterCriteria& c = m_list.criteria();
    const ListTotals& t = m_list.totals();
    const int type = c.typeFilter >= 0 && c.typeFilter < 3 ? c.typeFilter : 0;
    return {std::string(kTypeChoices[type]),
            c.from,
            c.to,
            cp1251::toUtf8(c.allCurrencies() ? allCurrenciesItem() : c.currency),
            cp1251::toUtf8(t.incomeText()),
            cp1251::toUtf8(t.expenseText()),
            cp1251::toUtf8(t.balanceText()),
            m_doc.path(),
            m_doc.clock().now()};
}

int ReportPrinter::paint(QPrinter& printer, bool selectionOnly) const
{
    const QPageLayout layout = printer.pageLayout();
    const bool landscape = layout.orientation() == QPageLayout::Landscape;
    const ReportPlan plan = planReport(m_list.rowCount(), m_list.selectedCount(), selectionOnly, landscape);
    if (plan.maxPage < 1) {
        return 0;
    }
    QPainter painter;
    if (!painter.begin(&printer)) {
        return 0;
    }
    const PageMapper map(printer);
    const QRectF paper = layout.paintRect(QPageLayout::Millimeter);
    ReportDevice device;
    device.width = static_cast<int>(paper.width() * 10);
    device.height = static_cast<int>(paper.height() * 10);
    device.landscape = landscape;
    // One line of the device's own font, measured before any of the report's fonts is chosen.
    device.lineHeight = static_cast<int>(QFontMetricsF(painter.font(), &printer).lineSpacing() / map.scale());
    const ReportContext ctx = context();
    QPen pen(Qt::black);
    pen.setWidthF(2 * map.scale()); // 0.2 mm
    painter.setPen(pen);
    for (int page = 1; page <= plan.maxPage; ++page) {
        if (page > 1) {
            printer.newPage();
        }
        for (const ReportItem& item : layoutReportPage(m_list, ctx, m_settings, plan, device, page)) {
            const QRectF r = map.rect(item.rect);
            switch (item.kind) {
            case ReportItem::Kind::Outline:
                painter.drawRect(r);
                break;
            case ReportItem::Kind::Fill:
                painter.fillRect(r, QColor(kReportGrey, kReportGrey, kReportGrey));
                break;
            case ReportItem::Kind::Text:
                painter.setFont(map.font(item.font));
                if (item.font == ReportFont::Table) {
                    // A long description stays in its own cell.
                    painter.save();
                    painter.setClipRect(r);
                    painter.drawText(r, alignment(item), QString::fromStdString(item.text));
                    painter.restore();
                } else {
                    painter.drawText(r, alignment(item), QString::fromStdString(item.text));
                }
                break;
            }
        }
    }
    painter.end();
    return plan.maxPage;
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
