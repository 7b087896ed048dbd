#include "cli/qt_renderer.h"

#include "render/report_painter.h"
#include "render/yearly_chart.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>

namespace finora::cli {

QtRenderer::QtRenderer() = default;
QtRenderer::~QtRenderer() = default;

void QtRenderer::startGui()
{
    if (QCoreApplication::instance()) {
        return; // a test's own application, already there
    }
    // Whatever the user's session holds: a command line never shows a window.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    m_app = std::make_unique<QGuiApplication>(m_argc, m_argv);
}

bool QtRenderer::reportPdf(const std::string& path, const OperationsList& list,
                           const ReportContext& context, const Settings& settings, bool landscape)
{
    startGui();
    QPdfWriter pdf(QString::fromStdString(path));
    pdf.setPageSize(QPageSize(QPageSize::A4));
    pdf.setPageOrientation(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    pdf.setCreator(QStringLiteral("Finora"));
    pdf.setTitle(QStringLiteral("Справка"));
    return paintReport(pdf, list, context, settings, false) > 0;
}

bool QtRenderer::chartPng(const std::string& path, const YearlySummary& summary, int year,
                          int width, int height)
{
    startGui();
    QImage image(width, height, QImage::Format_RGB32);
    if (image.isNull()) {
        return false;
    }
    QPainter painter(&image);
    makeYearlyChart(summary, year)->draw(painter, image.rect());
    painter.end();
    return image.save(QString::fromStdString(path), "PNG");
}

} // namespace finora::cli
