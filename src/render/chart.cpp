#include "render/chart.h"

#include <QFontMetrics>
#include <QPainter>
#include <QRect>
#include <algorithm>
#include <cmath>

namespace finora {

AxisScale axisScale(int minimum, int maximum, int requested)
{
    AxisScale s;
    s.minimum = minimum;
    s.maximum = maximum > minimum ? maximum : static_cast<double>(minimum) + 1.0;
    const double span = s.maximum - s.minimum;
    const double raw = span / std::max(1, requested);
    // The round step nearest above the raw one: 1, 2 or 5 times a power of ten.
    const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
    s.step = magnitude;
    for (double m : {1.0, 2.0, 5.0, 10.0}) {
        if (m * magnitude >= raw - 1e-9 * raw) {
            s.step = m * magnitude;
            break;
        }
    }
    // The values are whole numbers and so are their labels: a step below 1 would write one
    // label several times ("0 0 0 1 1 1" for a year without data).
    s.step = std::max(s.step, 1.0);
    s.maximum = s.minimum + std::ceil(span / s.step - 1e-9) * s.step;
    return s;
}

void Chart::addGroup(const QString& label, std::vector<int> values)
{
    m_labels << label;
    m_values.push_back(std::move(values));
}

void Chart::setYScale(int minimum, int maximum, int ticks)
{
    m_yMin = minimum;
    m_yMax = maximum;
    m_ticks = ticks;
}

int Chart::seriesCount() const
{
    std::size_t n = 0;
    for (const auto& v : m_values) {
        n = std::max(n, v.size());
    }
    return static_cast<int>(n);
}

QColor Chart::color(int series) const
{
    const auto it = m_colors.find(series);
    if (it != m_colors.end()) {
        return it->second;
    }
    return QColor::fromHsv((series * 67) % 360, 200, 220);
}

void Chart::draw(QPainter& painter, const QRect& area) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(area, Qt::white);
    if (m_type != Bars && m_type != Pie && m_type != Lines) {
        painter.setPen(Qt::black);
        painter.drawText(area, Qt::AlignCenter, QString::fromLatin1(kNoTypeText));
        painter.restore();
        return;
    }
    const QFontMetrics fm(painter.font());
    const int line = fm.height();
    QRect rest = area.adjusted(8, 8, -8, -8);

    const QFont bodyFont = painter.font();
    QFont titleFont = bodyFont;
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.2);
    painter.setFont(titleFont);
    painter.setPen(Qt::black);
    const int titleHeight = QFontMetrics(titleFont).height();
    painter.drawText(QRect(rest.left(), rest.top(), rest.width(), titleHeight), Qt::AlignCenter,
                     m_title);
    painter.setFont(bodyFont);
    rest.setTop(rest.top() + titleHeight + line / 2);

    drawLegend(painter, rest);
    rest.setBottom(rest.bottom() - line - line / 2);

    if (m_type == Pie) {
        drawPie(painter, rest);
    } else {
        drawBarsOrLines(painter, rest);
    }
    painter.restore();
}

void Chart::drawLegend(QPainter& painter, const QRect& area) const
{
    const QFontMetrics fm(painter.font());
    const int box = fm.height() - 4;
    int width = 0;
    for (int s = 0; s < seriesCount(); ++s) {
        width +=
            box + 6 + fm.horizontalAdvance(m_legends.count(s) ? m_legends.at(s) : QString()) + 20;
    }
    int x = area.center().x() - width / 2;
    const int y = area.bottom() - fm.height();
    for (int s = 0; s < seriesCount(); ++s) {
        painter.fillRect(QRect(x, y + 2, box, box), color(s));
        painter.setPen(Qt::black);
        painter.drawRect(QRect(x, y + 2, box, box));
        x += box + 6;
        const QString text = m_legends.count(s) ? m_legends.at(s) : QString();
        painter.drawText(QPoint(x, y + fm.ascent()), text);
        x += fm.horizontalAdvance(text) + 20;
    }
}

void Chart::drawBarsOrLines(QPainter& painter, const QRect& area) const
{
    const QFontMetrics fm(painter.font());
    const int line = fm.height();
    const AxisScale scale = axisScale(m_yMin, m_yMax, m_ticks);
    const int labelWidth =
        std::max(fm.horizontalAdvance(QString::number(static_cast<long long>(scale.maximum))),
                 fm.horizontalAdvance(QString::number(static_cast<long long>(scale.minimum))));
    // Room for the y title (turned), the tick labels, the group labels and the x title.
    const QRect plot(area.left() + line + labelWidth + 12, area.top() + line / 2,
                     area.width() - (line + labelWidth + 12) - 8,
                     area.height() - 3 * line - line / 2);
    if (plot.width() < 10 || plot.height() < 10) {
        return;
    }
    const auto yOf = [&](double v) {
        const double clamped = std::clamp(v, scale.minimum, scale.maximum);
        return plot.bottom() -
               (clamped - scale.minimum) / (scale.maximum - scale.minimum) * plot.height();
    };

    // Grid and tick labels; labels only where they do not crowd each other.
    const int steps = static_cast<int>(std::lround((scale.maximum - scale.minimum) / scale.step));
    const double pixelsPerStep = static_cast<double>(plot.height()) / std::max(1, steps);
    const int labelEvery = std::max(1, static_cast<int>(std::ceil(line * 1.5 / pixelsPerStep)));
    for (int i = 0; i <= steps; ++i) {
        const double v = scale.minimum + i * scale.step;
        const int y = static_cast<int>(std::lround(yOf(v)));
        if (i % labelEvery == 0) {
            painter.setPen(QColor(225, 225, 225));
            painter.drawLine(plot.left(), y, plot.right(), y);
            painter.setPen(Qt::black);
            painter.drawLine(plot.left() - 4, y, plot.left(), y);
            painter.drawText(QRect(plot.left() - labelWidth - 8, y - line / 2, labelWidth, line),
                             Qt::AlignRight | Qt::AlignVCenter,
                             QString::number(static_cast<long long>(std::llround(v))));
        }
    }

    const int groups = static_cast<int>(m_values.size());
    const int series = seriesCount();
    if (groups > 0 && series > 0) {
        const double groupWidth = static_cast<double>(plot.width()) / groups;
        // Group labels shrink to fit their groups before they are cut short.
        const QFont font = painter.font();
        QFont labelFont = font;
        int widest = 0;
        for (const QString& label : m_labels) {
            widest = std::max(widest, fm.horizontalAdvance(label));
        }
        if (widest > groupWidth - 4 && widest > 0) {
            labelFont.setPointSizeF(std::max(6.0, font.pointSizeF() * (groupWidth - 4) / widest));
        }
        const double barWidth = groupWidth * 0.8 / series;
        const double zero = yOf(std::clamp(0.0, scale.minimum, scale.maximum));
        std::vector<QPolygonF> lines(static_cast<std::size_t>(series));
        for (int g = 0; g < groups; ++g) {
            const double left = plot.left() + g * groupWidth;
            for (int s = 0; s < series; ++s) {
                const auto& values = m_values[static_cast<std::size_t>(g)];
                const int v =
                    s < static_cast<int>(values.size()) ? values[static_cast<std::size_t>(s)] : 0;
                if (m_type == Bars) {
                    const QRectF bar(QPointF(left + groupWidth * 0.1 + s * barWidth, yOf(v)),
                                     QPointF(left + groupWidth * 0.1 + (s + 1) * barWidth, zero));
                    painter.fillRect(bar.normalized(), color(s));
                    painter.setPen(Qt::black);
                    painter.drawRect(bar.normalized());
                } else {
                    lines[static_cast<std::size_t>(s)] << QPointF(left + groupWidth / 2, yOf(v));
                }
            }
            painter.setPen(Qt::black);
            painter.setFont(labelFont);
            painter.drawText(QRectF(left, plot.bottom() + 4, groupWidth, line),
                             Qt::AlignHCenter | Qt::AlignTop,
                             QFontMetrics(labelFont).elidedText(m_labels.value(g), Qt::ElideRight,
                                                                static_cast<int>(groupWidth)));
            painter.setFont(font);
        }
        for (int s = 0; s < series && m_type == Lines; ++s) {
            QPen pen(color(s));
            pen.setWidth(2);
            painter.setPen(pen);
            painter.drawPolyline(lines[static_cast<std::size_t>(s)]);
        }
    }

    painter.setPen(Qt::black);
    painter.drawLine(plot.bottomLeft(), plot.topLeft());
    painter.drawLine(plot.left(), static_cast<int>(yOf(0)), plot.right(), static_cast<int>(yOf(0)));
    painter.drawText(QRect(plot.left(), plot.bottom() + line + 4, plot.width(), line),
                     Qt::AlignCenter, m_xTitle);
    painter.save();
    painter.translate(area.left() + line / 2, plot.center().y());
    painter.rotate(-90);
    painter.drawText(QRect(-plot.height() / 2, -line / 2, plot.height(), line), Qt::AlignCenter,
                     m_yTitle);
    painter.restore();
}

void Chart::drawPie(QPainter& painter, const QRect& area) const
{
    // One slice per group, of the first series' values; negative values take no room.
    double total = 0;
    for (const auto& v : m_values) {
        total += v.empty() ? 0 : std::max(0, v.front());
    }
    const int side = std::min(area.width(), area.height()) - 8;
    const QRect circle(area.center().x() - side / 2, area.center().y() - side / 2, side, side);
    if (total <= 0 || side < 10) {
        painter.drawEllipse(circle);
        return;
    }
    int start = 90 * 16;
    for (std::size_t g = 0; g < m_values.size(); ++g) {
        const int v = m_values[g].empty() ? 0 : std::max(0, m_values[g].front());
        const int span = static_cast<int>(std::lround(v / total * 360 * 16));
        painter.setBrush(color(static_cast<int>(g)));
        painter.setPen(Qt::black);
        painter.drawPie(circle, start, -span);
        start -= span;
    }
    painter.setBrush(Qt::NoBrush);
}

} // namespace finora
