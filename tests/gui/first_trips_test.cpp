// What a first user of the desktop program tripped over: old dates, the file dialogs' folder,
// the recent files, fields that refuse a word, the CSV's columns and the messages of commands
// that cannot do their work.
#include "core/text/cp1251.h"
#include "support/desktop_session.h"
#include "support/user.h"

#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

class FirstTrips : public DesktopSession {
protected:
    // A ledger of one expense of 1 BGL on each of `dates`.
    void openLedgerOn(std::initializer_list<DateTime> dates)
    {
        Ledger l;
        l.categories.append(Category(1, "Food", 0));
        std::int32_t id = 0;
        for (const DateTime& date : dates) {
            ++id;
            l.operations.append(Operation(id, date, "x", kExpense, 1, 1.0, 0, 1.0, "", date, 1, 0));
        }
        l.counters = {1, 2, id + 1, 1};
        m_file = m_dir.filePath(QStringLiteral("стари.fnr"));
        writeFile(m_file.toStdString(), serializeLedger(l));
        startFrame();
        openWithKeys(m_file);
        ASSERT_EQ(m_frame->document().operationCount(), dates.size());
    }
    QString expenseShown() { return user::child<QLabel>(m_frame.get(), "expense")->text(); }
};

} // namespace

TEST_F(FirstTrips, EntriesOfEveryCenturyStayInViewWithoutAFilter)
{
    openLedgerOn({DateTime::fromParts(1776, 12, 31, 12), DateTime::fromParts(1900, 1, 1, 12),
                  DateTime::fromParts(1025, 3, 3, 12), DateTime::fromParts(2026, 1, 2, 8)});
    user::click(user::button(m_frame.get(), QStringLiteral("без филтър")));
    EXPECT_EQ(shownRows(), 4);
    EXPECT_EQ(expenseShown(), QStringLiteral("4.00 BGL"));
    // A change in the panel reads the period back from its date fields.
    user::click(user::button(m_frame.get(), QStringLiteral("включи и подкатегориите")));
    EXPECT_EQ(shownRows(), 4);
    auto* from = user::child<QDateEdit>(m_frame.get(), "periodFrom");
    ASSERT_NE(from, nullptr);
    EXPECT_EQ(from->date(), QDate(1025, 3, 3));
}

TEST_F(FirstTrips, SavedLedgersJoinTheRecentFilesAndTheDialogsStartInTheLedgersFolder)
{
    startFrame();
    ASSERT_TRUE(QDir(m_dir.path()).mkdir(QStringLiteral("копия")));
    const QString first = m_dir.filePath(QStringLiteral("първи.fnr"));
    const QString second = m_dir.filePath(QStringLiteral("копия/втори.fnr"));
    const QStringList saveAs{QStringLiteral("Файл"), QStringLiteral("Запиши като ...")};
    // A new ledger saved for the first time, then under another name.
    m_host.paths = {first.toStdString()};
    user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
    m_host.paths = {second.toStdString()};
    user::chooseMenu(m_frame.get(), saveAs);
    ASSERT_EQ(m_frame->document().path(), second.toStdString());
    EXPECT_EQ(m_frame->recentFiles(), (QStringList{second, first}));

    // Open, import and Save As start in the open ledger's folder (cancelled here).
    user::press(m_frame.get(), Qt::Key_O, Qt::ControlModifier);
    user::chooseMenu(m_frame.get(), saveAs);
    user::chooseMenu(m_frame.get(), {QStringLiteral("Файл"),
                                     QStringLiteral("Импортиране на данни от друг документ ...")});
    const std::string copies = QFileInfo(second).absolutePath().toStdString();
    EXPECT_EQ(m_host.folders,
              (std::vector<std::string>{"", m_dir.path().toStdString(), copies, copies, copies}));
}
