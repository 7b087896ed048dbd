// The chart component drawn offscreen, and the yearly chart dialog as a user opens and drives it,
// both looked at pixel by pixel.
#include "core/reports/yearly_summary.h"
#include "render/chart.h"
#include "support/desktop_session.h"
#include "support/rendered_output.h"
#include "support/user.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QScreen>
#include <QSizeGrip>
#include <QSpinBox>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

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
    for (const auto& [low, high] :
         {std::pair{0, 0}, std::pair{0, 1}, std::pair{0, 7}, std::pair{-3, 3}}) {
        const AxisScale small = axisScale(low, high, 50);
        QStringList labels;
        for (double v = small.minimum; v <= small.maximum + 1e-9; v += small.step) {
            labels << QString::number(std::llround(v));
        }
        labels.removeDuplicates();
        EXPECT_EQ(labels.size(),
                  static_cast<int>(std::lround((small.maximum - small.minimum) / small.step)) + 1)
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

class YearlyChart : public DesktopSession {
protected:
    YearlyChart()
    {
        m_clock.set(DateTime::fromParts(2026, 11, 21));
        openGenerated(QStringLiteral("години.fnr"), 3000, 7);
    }
    // The bars a person sees in the frame: its pixels of the income colour.
    static int incomePixels(QWidget* frame)
    {
        return pixelsOf(frame->grab().toImage(), qRgb(0, 255, 0));
    }
};

// What the screen shows of a widget: its window's backing store, not a fresh rendering.
QImage onScreen(QWidget* widget)
{
    QApplication::processEvents();
    const QPoint at = widget->mapTo(widget->window(), QPoint(0, 0));
    return widget->screen()
        ->grabWindow(widget->window()->winId(), at.x(), at.y(), widget->width(), widget->height())
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

// Dark pixels in the middle band of the frame, where the request to refresh is written.
int darkInTheMiddle(const QImage& image)
{
    int n = 0;
    for (int y = image.height() * 2 / 5; y < image.height() * 3 / 5; ++y) {
        for (int x = 0; x < image.width(); ++x) {
            n += qGray(image.pixel(x, y)) < 64 ? 1 : 0;
        }
    }
    return n;
}

TEST_F(YearlyChart, ARepaintAfterTheDrawingAsksForObnoviOverThePicture)
{
    user::ExpectDialog chart([&](QDialog* d) {
        QWidget* frame = user::child<QWidget>(d, "chartFrame");
        ASSERT_NE(frame, nullptr);
        const QImage drawn = onScreen(frame);
        ASSERT_GT(pixelsOf(drawn, qRgb(0, 255, 0)), 200);

        // Any later paint of the frame (the window system asks for one when the window's kept
        // image is lost) writes the request over the picture, which stays under it.
        frame->update();
        const QImage covered = onScreen(frame);
        EXPECT_GT(darkInTheMiddle(covered), darkInTheMiddle(drawn) + 100);
        EXPECT_GT(pixelsOf(covered, qRgb(0, 255, 0)), pixelsOf(drawn, qRgb(0, 255, 0)) / 2);
        frame->update();
        EXPECT_EQ(onScreen(frame), covered);

        // "обнови" draws the chart again, without the request.
        user::click(user::button(d, QStringLiteral("обнови")));
        EXPECT_EQ(onScreen(frame), drawn);
        user::click(user::button(d, QStringLiteral("изход")));
    });
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Данни"),
                      QStringLiteral("Диаграма за приходите и разходите през годината ...")});
    chart.verify();
}

TEST_F(YearlyChart, DrawsTheYearStepsAndAsksForARefreshAfterAResize)
{
    // The generated ledger's busiest year.
    int busiest = 0;
    double most = 0;
    for (int year = 2000; year <= 2030; ++year) {
        YearlySummary s;
        if (computeYearlySummary(m_frame->document(), year, s) &&
            s.yearIncome + s.yearExpense > most) {
            most = s.yearIncome + s.yearExpense;
            busiest = year;
        }
    }
    ASSERT_GT(busiest, 0);
    QTemporaryDir dir;
    const QString png = dir.filePath(QStringLiteral("диаграма.png"));
    const QString nowhere = dir.filePath(QStringLiteral("няма/диаграма.png"));

    user::ExpectDialog chart([&](QDialog* d) {
        auto* year = user::child<QSpinBox>(d, "year");
        QWidget* frame = user::child<QWidget>(d, "chartFrame");
        ASSERT_TRUE(year && frame);
        EXPECT_EQ(year->text(), QStringLiteral("2026")); // the year of today
        const auto generate = [&](const QString& typed) {
            user::retype(year->findChild<QLineEdit*>(), typed);
            user::click(user::button(d, QStringLiteral("генерирай диаграма")));
        };
        generate(QString::number(busiest));
        const QImage first = frame->grab().toImage();
        EXPECT_GT(pixelsOf(first, qRgb(0, 255, 0)), 200);
        EXPECT_GT(pixelsOf(first, qRgb(255, 0, 0)), 200);
        if (const QString shots = qEnvironmentVariable("FINORA_SHOTS_DIR"); !shots.isEmpty()) {
            d->grab().save(shots + QStringLiteral("/yearly-chart.png"));
        }

        // The field takes any year, even outside the arrows' range, and Enter draws it; a year
        // with no rows has no bars.
        user::retype(year->findChild<QLineEdit*>(), QStringLiteral("1990"));
        QTest::keyClick(year, Qt::Key_Return);
        EXPECT_TRUE(d->isVisible());
        EXPECT_LT(incomePixels(frame), 200); // the legend's box only
        // The arrows step by one and draw.
        generate(QString::number(busiest - 1));
        QTest::keyClick(year, Qt::Key_Up);
        EXPECT_EQ(year->text(), QString::number(busiest));
        EXPECT_GT(incomePixels(frame), 200);

        // After a resize the frame shows the request to refresh instead of a picture that no
        // longer fits; "обнови" draws again.
        auto* grip = d->findChild<QSizeGrip*>();
        ASSERT_NE(grip, nullptr);
        const QSize before = frame->size();
        const QPoint from = grip->rect().center();
        QTest::mousePress(grip, Qt::LeftButton, {}, from);
        QTest::mouseMove(grip, from + QPoint(120, 80));
        QTest::mouseRelease(grip, Qt::LeftButton, {}, from + QPoint(120, 80));
        QApplication::processEvents();
        ASSERT_NE(frame->size(), before);
        EXPECT_EQ(incomePixels(frame), 0);
        user::click(user::button(d, QStringLiteral("обнови")));
        EXPECT_GT(incomePixels(frame), 200);

        user::ExpectDialog saveAs([&](QDialog* f) { user::answerFileDialog(f, png); });
        user::click(user::button(d, QStringLiteral("запиши като PNG ...")));
        saveAs.verify();
        EXPECT_EQ(QImage(png).size(), frame->grab().size());
        EXPECT_TRUE(m_prompter.messages().empty());
        // A picture that cannot be written is said, not passed over.
        user::ExpectDialog saveNowhere([&](QDialog* f) { user::answerFileDialog(f, nowhere); });
        user::click(user::button(d, QStringLiteral("запиши като PNG ...")));
        saveNowhere.verify();
        user::click(user::button(d, QStringLiteral("изход")));
    });
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Данни"),
                      QStringLiteral("Диаграма за приходите и разходите през годината ...")});
    chart.verify();
    ASSERT_EQ(m_prompter.messages().size(), 1u);
    EXPECT_EQ(m_prompter.messages().back().icon, MessageIcon::Error);
    EXPECT_NE(m_prompter.messages().back().text.find(nowhere.toStdString()), std::string::npos);
}

} // namespace
