#pragma once

#include <QColor>
#include <QString>
#include <QStringList>
#include <map>
#include <vector>

class QPainter;
class QRect;

namespace finora {

// A y axis that covers [minimum, maximum] in round steps, about `requested` of them.
struct AxisScale {
    double minimum = 0;
    double maximum = 1;
    double step = 1;
};
// A maximum that is not above the minimum is widened to minimum + 1.
AxisScale axisScale(int minimum, int maximum, int requested);

// Draws grouped integer values: grouped vertical bars, a pie of the first series' group values,
// or one line per series; with a title, axis titles, series colours, a legend and group labels.
class Chart {
public:
    enum Type { Bars = 0, Pie = 1, Lines = 2 };

    void setGraphType(int type) { m_type = type; }
    void setTitle(const QString& title) { m_title = title; }
    void setXAxisTitle(const QString& title) { m_xTitle = title; }
    void setYAxisTitle(const QString& title) { m_yTitle = title; }
    void setSeriesColor(int series, const QColor& color) { m_colors[series] = color; }
    void setSeriesLegend(int series, const QString& text) { m_legends[series] = text; }
    void addGroup(const QString& label, std::vector<int> values);
    void setYScale(int minimum, int maximum, int ticks);

    void draw(QPainter& painter, const QRect& area) const;

    static constexpr const char* kNoTypeText = "No graph type to display";

private:
    int seriesCount() const;
    QColor color(int series) const;
    void drawBarsOrLines(QPainter& painter, const QRect& plot) const;
    void drawPie(QPainter& painter, const QRect& plot) const;
    void drawLegend(QPainter& painter, const QRect& area) const;

    int m_type = Bars;
    QString m_title;
    QString m_xTitle;
    QString m_yTitle;
    std::map<int, QColor> m_colors;
    std::map<int, QString> m_legends;
    QStringList m_labels;
    std::vector<std::vector<int>> m_values;
    int m_yMin = 0;
    int m_yMax = 1;
    int m_ticks = 10;
};

} // namespace finora
