#include "render/report_painter.h"

#include <QFontDatabase>
#include <QPagedPaintDevice>
#include <QPainter>
#include <algorithm>

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
    explicit PageMapper(const QPaintDevice& device) : m_scale(device.logicalDpiY() / 254.0) {}

    double scale() const { return m_scale; }
    QRectF rect(const ReportRect& r) const
    {
        return QRectF(QPointF(r.left * m_scale, -r.top * m_scale),
                      QPointF(r.right * m_scale, -r.bottom * m_scale));
    }
    QFont font(ReportFont use) const
    {
        const ReportFontSpec style = reportFont(use);
        QFont f(reportFamily());
        // The height is the whole character cell; Arial's em is about 1/1.15 of it.
        f.setPixelSize(std::max(1, static_cast<int>(style.height * m_scale / 1.15)));
        f.setBold(style.bold);
        f.setItalic(style.italic);
        f.setStyleHint(QFont::SansSerif);
        return f;
    }

private:
    double m_scale; // device pixels per 0.1 mm
};

int alignment(const ReportItem& item)
{
    int flags = Qt::TextSingleLine;
    flags |= item.align == ReportAlign::Left    ? Qt::AlignLeft
             : item.align == ReportAlign::Right ? Qt::AlignRight
                                                : Qt::AlignHCenter;
    flags |= item.font == ReportFont::Table ? Qt::AlignVCenter : Qt::AlignTop;
    return flags;
}

} // namespace

int paintReport(QPagedPaintDevice& device, const OperationsList& list, const ReportContext& context,
                const Settings& settings, bool selectionOnly, const ReportProgress& progress,
                ReportPages pages)
{
    const QPageLayout layout = device.pageLayout();
    const bool landscape = layout.orientation() == QPageLayout::Landscape;
    const ReportPlan plan =
        planReport(list.rowCount(), list.selectedCount(), selectionOnly, landscape);
    const int first = std::max(pages.first, 1);
    const int last = pages.last > 0 ? std::min(pages.last, plan.maxPage) : plan.maxPage;
    if (first > last) {
        return 0;
    }
    QPainter painter;
    if (!painter.begin(&device)) {
        return 0;
    }
    const PageMapper map(device);
    const QRectF paper = layout.paintRect(QPageLayout::Millimeter);
    ReportDevice page;
    page.width = static_cast<int>(paper.width() * 10);
    page.height = static_cast<int>(paper.height() * 10);
    page.landscape = landscape;
    // One line of the device's own font, measured before any of the report's fonts is chosen.
    page.lineHeight =
        static_cast<int>(QFontMetricsF(painter.font(), &device).lineSpacing() / map.scale());
    QPen pen(Qt::black);
    pen.setWidthF(2 * map.scale()); // 0.2 mm
    painter.setPen(pen);
    int painted = 0;
    for (int number = first; number <= last; ++number) {
        if (progress && !progress(number - first + 1, last - first + 1)) {
            break;
        }
        if (painted > 0) {
            device.newPage();
        }
        ++painted;
        for (const ReportItem& item :
             layoutReportPage(list, context, settings, plan, page, number)) {
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
    return painted;
}

} // namespace finora
