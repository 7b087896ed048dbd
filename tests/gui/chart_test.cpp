// The chart component and the yearly chart dialog, drawn offscreen and looked at pixel by pixel.
#include "app/yearly_chart_dialog.h"
#include "chart/chart.h"
#include "demo/ledger_generator.h"
#include "model/recording_prompter.h"
#include "support/rendered_output.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace finora;
using test::pixelsOf;

namespace {

QImage render(const Chart& chart)
{
    QImage image(600, 400, QImage::Format_RGB32);
    QPainter painter(&image);
    chart.draw(painter, image.rect());
    return image;
}

TEST(Chart, TheAxisTakesRoundStepsAndWidensAnEmptyRange)
{
    const AxisScale s = axisScale(0, 5000, 50);
    EXPECT_EQ(s.step, 100);
    EXPECT_EQ(s.maximum, 5000);
    const AxisScale odd = axisScale(0, 1234, 50);
    EXPECT_EQ(odd.step, 50);
    EXPECT_EQ(odd.maximum, 1250); // the top tick covers the maximum
    EXPECT_NEAR((odd.maximum - odd.minimum) / odd.step, 50, 25);
    // A range of no width, or upside down, becomes one unit.
    EXPECT_EQ(axisScale(0, 0, 50).maximum, 1);
    EXPECT_EQ(axisScale(10, 3, 5).maximum, 11);
    EXPECT_GT(axisScale(0, 0, 50).step, 0);
    // Whole numbers on the axis: a small range never writes one label twice.
    for (const auto& [low, high] : {std::pair{0, 0}, std::pair{0, 1}, std::pair{0, 7}, std::pair{-3, 3}}) {
        const AxisScale small = axisScale(low, high, 50);
        QStringList labels;
        for (double v = small.minimum; v <= small.maximum + 1e-9; v += small.step) {
            labels << QString::number(std::llround(v));
        }
        labels.removeDuplicates();
        EXPECT_EQ(labels.size(), static_cast<int>(std::lround((small.maximum - small.minimum) / small.step)) + 1)
            << low << ".." << high;
    }
}

TEST(Chart, BarsInTheSeriesColoursAndNothingForAnUnknownType)
{
    Chart chart;
    chart.setSeriesColor(0, QColor(0, 255, 0));
    chart.setSeriesColor(1, QColor(255, 0, 0));
    chart.addGroup(QStringLiteral("януари"), {100, 50});
    chart.addGroup(QStringLiteral("февруари"), {0, 80});
    chart.setYScale(0, 100, 10);
    const QImage bars = render(chart);
    const int green = pixelsOf(bars, qRgb(0, 255, 0));
    const int red = pixelsOf(bars, qRgb(255, 0, 0));
    EXPECT_GT(green, 1000);
    EXPECT_GT(red, 1000);
    // The income bar is twice as tall as the first expense bar and as wide: roughly the area of
    // both expense bars together (50 + 80 against 100).
    EXPECT_NEAR(static_cast<double>(red) / green, 1.3, 0.25);

    chart.setGraphType(Chart::Lines);
    EXPECT_GT(pixelsOf(render(chart), qRgb(0, 255, 0)), 50);
    chart.setGraphType(Chart::Pie);
    EXPECT_GT(pixelsOf(render(chart), qRgb(0, 255, 0)), 1000);
    chart.setGraphType(7);
    const QImage unknown = render(chart);
    EXPECT_EQ(pixelsOf(unknown, qRgb(0, 255, 0)), 0);
    int dark = 0; // the "No graph type to display" text
    for (int y = 0; y < unknown.height(); ++y) {
        for (int x = 0; x < unknown.width(); ++x) {
            dark += qGray(unknown.pixel(x, y)) < 128 ? 1 : 0;
        }
    }
    EXPECT_GT(dark, 100);
}

TEST(YearlyChart, DrawsTheYearStepsAndAsksForARefreshAfterAResize)
{
    FixedClock clock(DateTime::fromParts(2026, 11, 21));
    CFinoraDoc doc(clock);
    doc.replaceLedger(generateLedger(3000, 7));
    // The generated ledger's busiest year.
    int busiest = 0;
    double most = 0;
    for (int year = 2000; year <= 2030; ++year) {
        YearlySummary s;
        if (computeYearlySummary(doc, year, s) && s.yearIncome + s.yearExpense > most) {
            most = s.yearIncome + s.yearExpense;
            busiest = year;
        }
    }
    RecordingPrompter prompter;
    YearlyChartDialog dialog(doc, busiest, prompter, nullptr);
    dialog.show();
    QApplication::processEvents();
    EXPECT_EQ(dialog.year(), busiest);
    EXPECT_GT(dialog.summary().yearIncome, 0);
    const QImage first = dialog.picture().toImage();
    EXPECT_GT(pixelsOf(first, qRgb(0, 255, 0)), 200);
    EXPECT_GT(pixelsOf(first, qRgb(255, 0, 0)), 200);
    if (const QString shots = qEnvironmentVariable("FINORA_SHOTS_DIR"); !shots.isEmpty()) {
        dialog.grab().save(shots + QStringLiteral("/yearly-chart.png"));
    }

    // The field takes any year, even outside the arrows' range; a year with no rows has no bars.
    const auto generate = [&dialog](const QString& year) {
        dialog.findChild<QLineEdit*>(QStringLiteral("year"))->setText(year);
        for (QPushButton* b : dialog.findChildren<QPushButton*>()) {
            if (b->text() == QStringLiteral("генерирай диаграма")) {
                b->click();
            }
        }
    };
    generate(QStringLiteral("1990"));
    EXPECT_EQ(dialog.year(), 1990);
    EXPECT_EQ(dialog.summary().maximum, 0);
    EXPECT_LT(pixelsOf(dialog.picture().toImage(), qRgb(0, 255, 0)), 200); // the legend's box only
    // The arrows step by one and draw.
    generate(QString::number(busiest - 1));
    dialog.findChild<QToolButton*>(QStringLiteral("yearUp"))->click();
    EXPECT_EQ(dialog.year(), busiest);
    EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("year"))->text(), QString::number(busiest));
    EXPECT_GT(pixelsOf(dialog.picture().toImage(), qRgb(0, 255, 0)), 200);

    // After a resize the frame shows the request to refresh instead of a picture that no longer
    // fits; "обнови" draws again from the summary already computed.
    QWidget* frame = dialog.findChild<QWidget*>(QStringLiteral("chartFrame"));
    dialog.resize(dialog.width() + 120, dialog.height() + 80);
    QApplication::processEvents();
    EXPECT_EQ(pixelsOf(frame->grab().toImage(), qRgb(0, 255, 0)), 0);
    for (QPushButton* b : dialog.findChildren<QPushButton*>()) {
        if (b->text() == QStringLiteral("обнови")) {
            b->click();
        }
    }
    QApplication::processEvents();
    EXPECT_GT(pixelsOf(frame->grab().toImage(), qRgb(0, 255, 0)), 200);

    QTemporaryDir dir;
    const QString png = dir.filePath(QStringLiteral("диаграма.png"));
    ASSERT_TRUE(dialog.savePicture(png));
    EXPECT_EQ(QImage(png).size(), dialog.picture().size());
    EXPECT_TRUE(prompter.messages().empty());
    // A picture that cannot be written is said, not passed over.
    const QString nowhere = dir.filePath(QStringLiteral("няма/диаграма.png"));
    EXPECT_FALSE(dialog.savePicture(nowhere));
    ASSERT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(prompter.messages().back().icon, MessageIcon::Error);
    EXPECT_NE(prompter.messages().back().text.find(nowhere.toStdString()), std::string::npos);
}

} // namespace
