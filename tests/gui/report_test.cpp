// The printed report through a real printer: a PDF file, read back as text.
#include "app/main_frame.h"
#include "demo/ledger_generator.h"
#include "model/recording_prompter.h"
#include "settings/memory_settings_store.h"
#include "support/rendered_output.h"
#include "support/scripted_host.h"
#include "text/cp1251.h"

#include "support/dialog_driver.h"

#include <QAction>
#include <QFile>
#include <QPrintPreviewWidget>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace finora;
using test::pdfText;

namespace {

// A main window over a generated ledger, its list showing every operation.
class Report : public ::testing::Test {
protected:
    void open(std::int64_t operations, std::uint64_t seed)
    {
        frame.document().replaceLedger(generateLedger(operations, seed));
        frame.view().resetFilter();
    }

    MemorySettingsStore store;
    FixedClock clock{DateTime::fromParts(2026, 11, 21, 9, 5)};
    test::ScriptedHost host;
    RecordingPrompter prompter;
    CMainFrame frame{store, prompter, host, clock};
};

TEST_F(Report, AGeneratedListPrintsToAPdfWithTitleTotalsAndPageNumbers)
{
    open(80, 11);
    frame.document().setPath("/tmp/домашен бюджет.fnr");
    frame.view().refresh();
    const std::size_t rows = frame.view().list().rowCount();
    ASSERT_GT(rows, 50u);
    ASSERT_LE(rows, 100u);

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("справка.pdf"));
    ASSERT_TRUE(frame.report().exportPdf(path));
    if (const QString keep = qEnvironmentVariable("FINORA_SHOTS_DIR"); !keep.isEmpty()) {
        QFile::copy(path, keep + QStringLiteral("/report.pdf"));
    }
    const QString text = pdfText(path);
    ASSERT_FALSE(text.isEmpty()) << "pdftotext found nothing";
    const QStringList pages = text.split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    ASSERT_EQ(pages.size(), 2);
    EXPECT_TRUE(pages[0].contains(QStringLiteral("СПРАВКА ЗА ПРИХОДИТЕ И РАЗХОДИТЕ ОТ")));
    EXPECT_TRUE(pages[0].contains(QStringLiteral("ВАЛУТЕН КРИТЕРИЙ: ВСИЧКИ ВАЛУТИ В BGL")));
    EXPECT_TRUE(pages[0].contains(QStringLiteral("1/2")));
    EXPECT_FALSE(pages[0].contains(QStringLiteral("БАЛАНС:")));
    EXPECT_TRUE(pages[1].contains(QStringLiteral("2/2")));
    EXPECT_TRUE(pages[1].contains(QStringLiteral("файл: /tmp/домашен бюджет.fnr")));
    const ListTotals& totals = frame.view().list().totals();
    for (const std::string& total : {totals.incomeText(), totals.expenseText(), totals.balanceText()}) {
        EXPECT_TRUE(pages[1].contains(QString::fromStdString(cp1251::toUtf8(total)))) << total;
    }
    EXPECT_TRUE(pages[1].contains(QStringLiteral("ПРИХОД:")));
    EXPECT_TRUE(pages[1].contains(QStringLiteral("БАЛАНС:")));

    // An empty list prints nothing.
    frame.document().deleteAllOperations();
    frame.view().refresh();
    EXPECT_FALSE(frame.report().exportPdf(dir.filePath(QStringLiteral("празна.pdf"))));
}

TEST_F(Report, ThePreviewShowsEveryPage)
{
    open(120, 4);
    const std::size_t rows = frame.view().list().rowCount();
    int pages = -1;
    test::answerNextDialog([&](QDialog* d) {
        auto* preview = d->findChild<QPrintPreviewWidget*>();
        ASSERT_NE(preview, nullptr);
        preview->updatePreview();
        pages = preview->pageCount();
        d->reject();
    });
    frame.action("actionPrintPreview")->trigger();
    EXPECT_EQ(pages, static_cast<int>((rows + 49) / 50));
}

} // namespace
