// finora-cli's report and chart, drawn by the desktop program's painting code on the offscreen
// platform: the PDF is read back with pdftotext and the picture pixel by pixel.
#include "cli/cli_app.h"
#include "cli/qt_renderer.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/file_io.h"
#include "support/rendered_output.h"

#include <QImage>
#include <QRegularExpression>
#include <QString>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>

using namespace finora;
using test::pdfText;
using test::pixelsOf;
namespace fs = std::filesystem;

namespace {

// One renderer, and so one GUI application, for the whole run, as finora-cli has.
cli::QtRenderer* g_renderer = nullptr;

struct CliResult {
    int status;
    std::string out;
    std::string err;
};

class CliRenderTest : public ::testing::Test {
protected:
    CliRenderTest()
        : dir(fs::temp_directory_path() /
              (std::string("finora-cli-render-") +
               ::testing::UnitTest::GetInstance()->current_test_info()->name()))
    {
        fs::remove_all(dir);
        fs::create_directories(dir);
        ledger = path("дом.fnr");
        EXPECT_EQ(run({"generate", ledger, "--operations", "120", "--seed", "5"}).status, 0);
    }
    ~CliRenderTest() override { fs::remove_all(dir); }

    CliResult run(std::vector<std::string> args, cli::Renderer* renderer = g_renderer)
    {
        args.insert(args.begin(), {"--now", "2026-11-21 09:05:00"});
        std::ostringstream out, err;
        const int status = cli::run(args, out, err, settings, renderer);
        return {status, out.str(), err.str()};
    }
    std::string path(const std::string& name) const { return pathToUtf8(dir / name); }

    // The last field of the CLI list's total lines ("приходи: 123.45 BGL").
    std::string total(const std::string& listOut, const std::string& label)
    {
        const std::size_t at = listOut.find(label + ": ");
        return at == std::string::npos
                   ? std::string()
                   : listOut.substr(at + label.size() + 2,
                                    listOut.find('\n', at) - at - label.size() - 2);
    }

    fs::path dir;
    std::string ledger;
    MemorySettingsStore settings;
};

} // namespace

TEST_F(CliRenderTest, TheReportPdfShowsTitleCurrencyPageNumbersTotalsAndFooter)
{
    const std::vector<std::string> filter = {"--from", "1-1-2000"};
    std::vector<std::string> list = {"list", ledger};
    list.insert(list.end(), filter.begin(), filter.end());
    const CliResult listed = run(list);
    ASSERT_EQ(listed.status, 0) << listed.err;
    const auto rows = std::count(listed.out.begin(), listed.out.end(), '\n') - 3;
    ASSERT_GT(rows, 100); // three portrait pages of 50
    ASSERT_LE(rows, 150);

    const std::string pdf = path("справка.pdf");
    std::vector<std::string> report = {"report", ledger, "--pdf", pdf};
    report.insert(report.end(), filter.begin(), filter.end());
    const CliResult r = run(report);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "Справката е записана: " + pdf + " (страници: 3)\n");

    const QString text = pdfText(QString::fromStdString(pdf));
    const QStringList pages = text.split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    ASSERT_EQ(pages.size(), 3) << text.toStdString();
    for (int p = 0; p < 3; ++p) {
        const QString& page = pages.at(p);
        EXPECT_TRUE(page.contains(
            QStringLiteral("СПРАВКА ЗА ПРИХОДИТЕ И РАЗХОДИТЕ ОТ 01-01-2000 ДО 21-11-2026")));
        EXPECT_TRUE(page.contains(QStringLiteral("ВАЛУТЕН КРИТЕРИЙ: ВСИЧКИ ВАЛУТИ В BGL")));
        EXPECT_TRUE(
            page.contains(QRegularExpression(QStringLiteral("(^|\\n)\\s*%1/3\\s").arg(p + 1))))
            << p;
        EXPECT_TRUE(
            page.contains(QStringLiteral("отпечатано на: 21-11-2026 9:5 / файл: ") +
                          QString::fromStdString(pathToUtf8(fs::absolute(pathFromUtf8(ledger))))));
        // Portrait: no notes column.
        EXPECT_FALSE(page.contains(QStringLiteral("забележки")));
    }
    // The totals, as the list gives them, on the last page only.
    for (const auto& [label, listLabel] :
         {std::pair{"ПРИХОД:", "приходи"}, std::pair{"РАЗХОД:", "разходи"},
          std::pair{"БАЛАНС:", "баланс"}}) {
        const QString line =
            QString::fromUtf8(label) + QStringLiteral("\\s+") +
            QRegularExpression::escape(QString::fromStdString(total(listed.out, listLabel)));
        EXPECT_TRUE(pages.at(2).contains(QRegularExpression(line))) << label;
        EXPECT_FALSE(pages.at(0).contains(QString::fromUtf8(label)));
    }
}

TEST_F(CliRenderTest, TheReportFollowsTheFilterSearchAndOrientation)
{
    // Income alone, lying: the title says so, 35 rows a page and the notes column.
    const std::string pdf = path("приходи.pdf");
    const CliResult r =
        run({"report", ledger, "--pdf", pdf, "--from", "1-1-2000", "--type", "1", "--landscape"});
    ASSERT_EQ(r.status, 0) << r.err;
    const QString text = pdfText(QString::fromStdString(pdf));
    EXPECT_TRUE(text.contains(QStringLiteral("СПРАВКА ЗА ПРИХОДИТЕ ОТ 01-01-2000 ДО 21-11-2026")));
    EXPECT_TRUE(text.contains(QStringLiteral("забележки")));
    EXPECT_FALSE(text.contains(QRegularExpression(QStringLiteral("\\s-\\d+\\.\\d\\d\\s"))))
        << "an expense row";

    // Only the rows the search keeps: one page, each with the word.
    const std::string found = path("пазар.pdf");
    ASSERT_EQ(run({"report", ledger, "--pdf", found, "--from", "1-1-2000", "--search", "пазар",
                   "--only-matching"})
                  .status,
              0);
    const QString foundText = pdfText(QString::fromStdString(found));
    EXPECT_EQ(foundText.split(QLatin1Char('\f'), Qt::SkipEmptyParts).size(), 1);
    EXPECT_TRUE(foundText.contains(QStringLiteral("1/1")));
    EXPECT_TRUE(foundText.contains(QStringLiteral("Пазар")));

    // Nothing to print, no way to write, no place to say where: each says so and writes nothing.
    const CliResult empty =
        run({"report", ledger, "--pdf", path("празна.pdf"), "--from", "1-1-2030"});
    EXPECT_EQ(empty.status, cli::kNotWritten);
    EXPECT_FALSE(fs::exists(pathFromUtf8(path("празна.pdf"))));
    EXPECT_EQ(run({"report", ledger, "--pdf", path("няма/такава.pdf")}).status, cli::kNotWritten);
    EXPECT_EQ(run({"report", ledger}).status, cli::kUsage);
}

TEST_F(CliRenderTest, TheChartIsAPictureOfTheAskedSizeWithGreenIncomeAndRedExpense)
{
    const std::string png = path("2026.png");
    const CliResult r =
        run({"chart", ledger, "2026", "--png", png, "--width", "640", "--height", "400"});
    ASSERT_EQ(r.status, 0) << r.err;
    const QImage picture(QString::fromStdString(png));
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(picture.size(), QSize(640, 400));
    // Bars, not only the legend's two small boxes.
    EXPECT_GT(pixelsOf(picture, qRgb(0, 255, 0)), 1000);
    EXPECT_GT(pixelsOf(picture, qRgb(255, 0, 0)), 1000);

    // A year without entries: the legend's boxes alone; the default size.
    const std::string quiet = path("2019.png");
    ASSERT_EQ(run({"chart", ledger, "2019", "--png", quiet}).status, 0);
    const QImage empty(QString::fromStdString(quiet));
    EXPECT_EQ(empty.size(), QSize(800, 500));
    EXPECT_LT(pixelsOf(empty, qRgb(0, 255, 0)), 300);
    EXPECT_GT(pixelsOf(empty, qRgb(0, 255, 0)), 0);

    EXPECT_EQ(run({"chart", ledger, "2026", "--png", png, "--width", "0"}).status, cli::kUsage);
    EXPECT_EQ(run({"chart", ledger, "2026", "--png", png, "--height", "9000"}).status, cli::kUsage);
    EXPECT_EQ(run({"chart", ledger, "2026"}).status, cli::kUsage);
    EXPECT_EQ(run({"chart", ledger, "2026", "--png", path("няма/2026.png")}).status,
              cli::kNotWritten);
}

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    cli::QtRenderer renderer;
    g_renderer = &renderer;
    return RUN_ALL_TESTS();
}
