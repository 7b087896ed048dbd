#include "render/yearly_chart.h"

namespace finora {

std::unique_ptr<Chart> makeYearlyChart(const YearlySummary& summary, int year)
{
    auto chart = std::make_unique<Chart>();
    chart->setGraphType(Chart::Bars);
    chart->setXAxisTitle(QStringLiteral("месеци"));
    chart->setYAxisTitle(QStringLiteral("сума"));
    chart->setSeriesColor(0, QColor(0, 255, 0));
    chart->setSeriesLegend(0, QStringLiteral("приходи"));
    chart->setSeriesColor(1, QColor(255, 0, 0));
    chart->setSeriesLegend(1, QStringLiteral("разходи"));
    const YearlyChartData data = yearlyChartData(summary, year);
    chart->setTitle(QString::fromStdString(data.title));
    for (std::size_t m = 0; m < data.labels.size(); ++m) {
        chart->addGroup(QString::fromUtf8(data.labels[m]), {data.values[m][0], data.values[m][1]});
    }
    chart->setYScale(0, data.yMaximum, YearlyChartData::kTicks);
    return chart;
}

} // namespace finora
