// The printed report as the menus make it: a PDF file read back as text, and the preview.
#include "support/desktop_session.h"
#include "support/rendered_output.h"
#include "support/user.h"

#include <QFile>
#include <QLabel>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

// A main window over a generated ledger, its list showing every operation.
class Report : public DesktopSession {
protected:
    Report() { m_clock.set(DateTime::fromParts(2026, 11, 21, 9, 5)); }
    QString shownText(const char* label)
    {
        return user::child<QLabel>(m_frame.get(), label)->text();
    }
};

TEST_F(Report, AGeneratedListPrintsToAPdfWithTitleTotalsAndPageNumbers)
{
    openGenerated(QStringLiteral("бюджет.fnr"), 80, 11);
    const int rows = shownRows();
    ASSERT_GT(rows, 50);
    ASSERT_LE(rows, 100);

    const QStringList exportPdf = {QStringLiteral("Файл"),
                                   QStringLiteral("Запиши справката като PDF ...")};
    const QString path = m_dir.filePath(QStringLiteral("справка.pdf"));
    m_host.exportPaths.push_back(path.toStdString());
    user::chooseMenu(m_frame.get(), exportPdf);
    ASSERT_EQ(m_host.exportRequests.size(), 1u);
    EXPECT_EQ(m_host.exportRequests[0].filter, "PDF (*.pdf)");
    if (const QString keep = qEnvironmentVariable("FINORA_SHOTS_DIR"); !keep.isEmpty()) {
        QFile::copy(path, keep + QStringLiteral("/report.pdf"));
    }
    const QString text = pdfText(path);
    ASSERT_FALSE(text.isEmpty()) << "pdftotext found nothing";
    const QStringList pages = text.split(QLatin1Char('\f'), Qt::SkipEmptyParts);
    ASSERT_EQ(pages.size(), 2);
    EXPECT_TRUE(pages[1].contains(QStringLiteral("файл: ") + m_file)) << pages[1].toStdString();
    // The totals as the window shows them under the list.
    for (const char* total : {"income", "expense", "balance"}) {
        EXPECT_TRUE(pages[1].contains(shownText(total)))
            << total << ": " << shownText(total).toStdString();
    }

    // An empty list prints nothing: the command is off.
    user::chooseMenu(m_frame.get(), {QStringLiteral("Редакция"), QStringLiteral("Изтрий всички")});
    EXPECT_EQ(shownRows(), 0);
    EXPECT_FALSE(user::lookAtMenu(m_frame.get(), exportPdf)->isEnabled());
}

} // namespace
