// The desktop program's window as a user drives it: keys, clicks and menus opened with the mouse,
// with scripted answers to the questions and the file choosers.
#include "core/storage/filter_file.h"
#include "core/text/cp1251.h"
#include "support/desktop_session.h"
#include "support/user.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QSet>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

class MainFrameTest : public DesktopSession {
protected:
    MainFrameTest()
    {
        writeGenerated(QStringLiteral("дом.fnr"), 500, 3);
        startFrame();
    }

    void open()
    {
        openWithKeys(m_file);
        ASSERT_EQ(m_frame->document().path(), m_file.toStdString());
    }
};

} // namespace

TEST_F(MainFrameTest, OpensALedgerIntoTheList)
{
    open();
    QAbstractItemModelTester tester(table()->model(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(shownRows(), 500);
    // Newest entry of the ledger on top, the first one at the bottom, selected.
    EXPECT_EQ(cell(0, 0), QStringLiteral("500"));
    EXPECT_EQ(cell(499, 0), QStringLiteral("1"));
    ASSERT_EQ(table()->selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(table()->selectionModel()->selectedRows().at(0).row(), 499);
    const auto* income = user::child<QLabel>(m_frame.get(), "income");
    ASSERT_NE(income, nullptr);
    EXPECT_EQ(income->text().toStdString(),
              cp1251::toUtf8(m_frame->view().list().totals().incomeText()));
    EXPECT_TRUE(m_frame->windowTitle().startsWith(QStringLiteral("дом.fnr")));
    EXPECT_TRUE(m_prompter.messages().empty());
}

TEST_F(MainFrameTest, DeletesTheSelectedRowsAfterAskingAndSaves)
{
    open();
    user::clickIndex(table(), table()->model()->index(0, 3));
    const QString clicked = cell(0, 0);
    m_prompter.queue(Answer::No);
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Редакция"), QStringLiteral("Изтрий маркираните")});
    EXPECT_EQ(shownRows(), 500);
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Редакция"), QStringLiteral("Изтрий маркираните")});
    EXPECT_EQ(m_frame->document().operationCount(), 499u);
    EXPECT_EQ(shownRows(), 499);
    EXPECT_NE(cell(0, 0), clicked);
    EXPECT_TRUE(m_frame->isWindowModified());

    user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_FALSE(m_frame->isWindowModified());
    EXPECT_EQ(ledgerOnDisk().operations.size(), 499u);
}

TEST_F(MainFrameTest, TheFilterPanelNarrowsTheList)
{
    open();
    auto* tree = user::child<QTreeWidget>(m_frame.get(), "categoryTree");
    auto* selected = user::child<QTreeWidget>(m_frame.get(), "selectedCategories");
    ASSERT_TRUE(tree && selected);

    // F2 with nothing chosen in the tree says so.
    user::press(m_frame.get(), Qt::Key_F2);
    ASSERT_FALSE(m_prompter.messages().empty());
    EXPECT_EQ(lastMessage().icon, MessageIcon::Error);

    // A top-level category holds no entries of its own in a generated ledger...
    QTreeWidgetItem* top = tree->topLevelItem(0);
    user::clickItem(tree, top);
    user::press(m_frame.get(), Qt::Key_F2);
    user::press(m_frame.get(), Qt::Key_F2); // twice: one row
    EXPECT_EQ(selected->topLevelItemCount(), 1);
    EXPECT_EQ(shownRows(), 0);
    // ...until its subcategories count.
    user::click(user::button(m_frame.get(), QStringLiteral("включи и подкатегориите")));
    EXPECT_EQ(m_store.readInt("Settings", "ShowDataForSubCategories", 0), 1);
    const int shown = shownRows();
    EXPECT_GT(shown, 0);
    EXPECT_LT(shown, 500);

    // Emptying the chosen categories shows every entry again.
    QAbstractButton* clear = user::button(m_frame.get(), QStringLiteral("изчисти"));
    user::click(clear);
    EXPECT_EQ(selected->topLevelItemCount(), 0);
    EXPECT_FALSE(clear->isEnabled());
    EXPECT_EQ(shownRows(), 500);
}

TEST_F(MainFrameTest, StartUpReopensTheLastLedgerAndShowsTodayWhenAsked)
{
    const QStringList autoOpen =
        settingsMenu("Отваряй последния използван документ при стартиране");
    const QStringList showToday = settingsMenu("Показвай днешните операции при отваряне");
    EXPECT_FALSE(user::lookAtMenu(m_frame.get(), autoOpen)->isChecked());
    user::chooseMenu(m_frame.get(), autoOpen);
    EXPECT_TRUE(user::lookAtMenu(m_frame.get(), autoOpen)->isChecked());
    // The command line is the program's own start: no widget leads there.
    // With nothing used yet: an empty ledger and no message.
    EXPECT_TRUE(m_frame->startUp({QStringLiteral("finora")}));
    EXPECT_EQ(shownRows(), 0);
    EXPECT_TRUE(m_prompter.messages().empty());

    // A ledger named by a relative path is remembered by its whole path.
    const QString cwd = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(QFileInfo(m_file).path()));
    const bool opened = m_frame->startUp({QStringLiteral("finora"), QFileInfo(m_file).fileName()});
    QDir::setCurrent(cwd);
    ASSERT_TRUE(opened);
    EXPECT_EQ(m_store.readText("Settings", "LastFileUsed", ""), m_file.toStdString());
    EXPECT_EQ(user::menuTexts(m_frame.get(),
                              {QStringLiteral("Файл"), QStringLiteral("Последно отваряни")}),
              QStringList{QStringLiteral("1 ") + m_file});

    user::chooseMenu(m_frame.get(), showToday);
    auto other = std::make_unique<CMainFrame>(m_store, m_prompter, m_host, m_clock);
    EXPECT_TRUE(other->startUp({QStringLiteral("finora")}));
    EXPECT_EQ(other->document().operationCount(), 500u);
    EXPECT_TRUE(other->windowTitle().startsWith(QStringLiteral("дом.fnr")));
    // The period is today alone.
    DateTimeParts today;
    m_clock.now().toParts(today);
    const QDate day(today.year, today.month, today.day);
    EXPECT_EQ(user::child<QDateEdit>(other.get(), "periodFrom")->date(), day);
    EXPECT_EQ(user::child<QDateEdit>(other.get(), "periodTo")->date(), day);
}

TEST_F(MainFrameTest, TheCalculatorCommandSaysWhenThereIsNone)
{
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    user::press(m_frame.get(), Qt::Key_F9);
    qputenv("PATH", path);
    ASSERT_FALSE(m_prompter.messages().empty());
    EXPECT_EQ(lastMessage().icon, MessageIcon::Error);
    // It names every program it looked for, and no other system's.
    for (const char* program : CMainFrame::kCalculators) {
        EXPECT_NE(lastMessage().text.find(program), std::string::npos) << program;
    }
    EXPECT_EQ(lastMessage().text.find("Windows"), std::string::npos);
}

namespace {

// Ticks the check box of the dialog that shows `text`, unless it is ticked already.
void tick(QDialog* d, const QString& text)
{
    auto* box = qobject_cast<QCheckBox*>(user::button(d, text));
    ASSERT_NE(box, nullptr) << text.toStdString();
    if (!box->isChecked()) {
        user::click(box);
    }
    ASSERT_TRUE(box->isChecked()) << text.toStdString();
}

} // namespace

TEST_F(MainFrameTest, TheBackupFolderIsChosenCheckedAndCreated)
{
    const QStringList ownFolder = settingsMenu("Създавай резервни копия в директория ...");
    const QStringList beside = settingsMenu("Използвай директорията на файла");
    const QString folder = m_dir.filePath(QStringLiteral("копия/2026"));
    user::ExpectDialog choose([folder](QDialog* d) {
        user::retype(user::child<QLineEdit>(d, "folder"), folder);
        user::click(
            user::button(d, QStringLiteral("Open"))); // the creation question is answered yes
    });
    user::chooseMenu(m_frame.get(), ownFolder);
    choose.verify();
    EXPECT_TRUE(QFileInfo(folder).isDir());
    EXPECT_EQ(m_store.readText("Settings", "BackupDir", ""), folder.toStdString() + "/");
    EXPECT_TRUE(user::lookAtMenu(m_frame.get(), ownFolder)->isChecked());
    EXPECT_FALSE(user::lookAtMenu(m_frame.get(), beside)->isChecked());

    // Found again with the folder chooser: the dialog shows what it picked.
    const QString other = m_dir.filePath(QStringLiteral("копия"));
    user::ExpectDialog browse([&](QDialog* d) {
        EXPECT_EQ(user::child<QLineEdit>(d, "folder")->text(), folder + QLatin1Char('/'));
        user::ExpectDialog chooser([&](QDialog* f) { user::answerFileDialog(f, other); });
        user::click(user::button(d, QStringLiteral("...")));
        chooser.verify();
        EXPECT_EQ(user::child<QLineEdit>(d, "folder")->text(), other);
        QTest::keyClick(d, Qt::Key_Return);
    });
    user::chooseMenu(m_frame.get(), ownFolder);
    browse.verify();
    EXPECT_EQ(m_store.readText("Settings", "BackupDir", ""), other.toStdString() + "/");

    user::chooseMenu(m_frame.get(), beside);
    EXPECT_EQ(m_store.readText("Settings", "BackupDir", "x"), "");
    EXPECT_TRUE(user::lookAtMenu(m_frame.get(), beside)->isChecked());
}

TEST_F(MainFrameTest, TheCurrencyListFollowsTheLedger)
{
    open();
    auto* currency = user::child<QComboBox>(m_frame.get(), "currencyFilter");
    ASSERT_NE(currency, nullptr);
    EXPECT_EQ(currency->currentText(), QStringLiteral(":: ВСИЧКИ ВАЛУТИ В BGL ::"));
    EXPECT_LT(currency->findText(QStringLiteral("CHF")), 0);
    // Every window of the program that adds a currency refills the panel itself; the list's
    // own refill, for a currency that came some other way, has only this door.
    m_frame->document().addCurrency("CHF");
    user::activate(currency);
    QTest::mouseClick(currency, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return currency->view()->isVisible(); }, 1000));
    QStringList offered;
    for (int r = 0; r < currency->view()->model()->rowCount(); ++r) {
        offered << currency->view()->model()->index(r, 0).data().toString();
    }
    QTest::keyClick(currency->view(), Qt::Key_Escape);
    EXPECT_TRUE(offered.contains(QStringLiteral("CHF")))
        << offered.join(QLatin1Char(',')).toStdString();
    EXPECT_EQ(currency->currentText(),
              QStringLiteral(":: ВСИЧКИ ВАЛУТИ В BGL ::")); // refilling did not change the choice
    EXPECT_EQ(shownRows(), 500);
}

namespace {

// RFC 4180 records: quoted fields may hold commas, doubled quotes and line breaks.
std::vector<QStringList> parseCsv(const QString& text)
{
    std::vector<QStringList> records;
    QStringList record;
    QString field;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (quoted) {
            if (c == QLatin1Char('"') && i + 1 < text.size() &&
                text.at(i + 1) == QLatin1Char('"')) {
                field += c;
                ++i;
            } else if (c == QLatin1Char('"')) {
                quoted = false;
            } else {
                field += c;
            }
        } else if (c == QLatin1Char('"')) {
            quoted = true;
        } else if (c == QLatin1Char(',')) {
            record << field;
            field.clear();
        } else if (c == QLatin1Char('\r') && i + 1 < text.size() &&
                   text.at(i + 1) == QLatin1Char('\n')) {
            record << field;
            field.clear();
            records.push_back(record);
            record.clear();
            ++i;
        } else {
            field += c;
        }
    }
    EXPECT_TRUE(field.isEmpty() && record.isEmpty()) << "the last line has no CRLF";
    return records;
}

} // namespace

TEST_F(MainFrameTest, TheShownRowsAreWrittenAsCsvWithEveryColumnAfterASearch)
{
    open();
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Настройки"), QStringLiteral("Визуализирани полета"),
                      QStringLiteral("Забележки")});
    user::clickIndex(table(), table()->model()->index(0, 3));

    // F3, the word typed key by key, "описание" and "show only the matching rows" clicked, Enter.
    user::ExpectDialog search([](QDialog* d) {
        auto* text = user::child<QLineEdit>(d, "searchText");
        ASSERT_NE(text, nullptr);
        user::retype(text, QStringLiteral("пазар"));
        tick(d, QStringLiteral("описание"));
        tick(d, QStringLiteral("показвай само съвпадащите редове"));
        QTest::keyClick(text, Qt::Key_Return);
        EXPECT_FALSE(d->isVisible());
    });
    user::press(m_frame.get(), Qt::Key_F3);
    search.verify();
    const int shown = shownRows();
    ASSERT_GT(shown, 0);
    ASSERT_LT(shown, 500);

    // Файл, then "Запиши списъка като CSV ...", with the mouse.
    const QString csvPath = m_dir.filePath(QStringLiteral("пазар"));
    m_host.exportPaths.push_back(csvPath.toStdString());
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Файл"), QStringLiteral("Запиши списъка като CSV ...")});

    ASSERT_EQ(m_host.exportRequests.size(), 1u);
    EXPECT_EQ(m_host.exportRequests[0].filter, "CSV (*.csv)");
    QFile written(csvPath + QStringLiteral(".csv")); // the extension is added
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const std::vector<QStringList> records = parseCsv(QString::fromUtf8(written.readAll()));

    // The header and every row hold every column, hidden ones too, as finora-cli export writes
    // them (the dual view's euro column only in that view); the rows are the ones the list shows.
    std::vector<int> columns;
    QStringList headers;
    for (int c = 0; c < listColumnCount(MainMoney::Levs); ++c) {
        columns.push_back(c);
        headers << table()->model()->headerData(c, Qt::Horizontal).toString();
    }
    EXPECT_TRUE(table()->isColumnHidden(0));
    EXPECT_TRUE(headers.contains(QStringLiteral("забележки")));
    EXPECT_TRUE(headers.contains(QStringLiteral("описание")));
    ASSERT_EQ(records.size(), static_cast<std::size_t>(shown) + 1);
    EXPECT_EQ(records[0], headers);
    for (int r = 0; r < shown; ++r) {
        QStringList cells;
        for (int c : columns) {
            cells << cell(r, c);
        }
        EXPECT_EQ(records[static_cast<std::size_t>(r) + 1], cells) << r;
    }

    // Exactly the ledger's entries whose description holds the word, counted from the records.
    const int descr = static_cast<int>(headers.indexOf(QStringLiteral("описание")));
    int expected = 0;
    for (const Operation& op : m_frame->document().ledger().operations) {
        expected += QString::fromStdString(cp1251::toUtf8(op.description()))
                            .contains(QStringLiteral("пазар"), Qt::CaseInsensitive)
                        ? 1
                        : 0;
    }
    EXPECT_EQ(shown, expected);
    for (std::size_t r = 1; r < records.size(); ++r) {
        EXPECT_TRUE(records[r].at(descr).contains(QStringLiteral("пазар"), Qt::CaseInsensitive));
    }
}

TEST_F(MainFrameTest, TheAboutBoxNamesTheQtItRunsOn)
{
    user::chooseMenu(m_frame.get(), {QStringLiteral("Помощ"), QStringLiteral("За програмата ...")});
    ASSERT_EQ(m_prompter.messages().size(), 1u);
    EXPECT_EQ(lastMessage().icon, MessageIcon::Program);
    EXPECT_NE(lastMessage().text.find(std::string("Qt ") + qVersion()), std::string::npos);
}

TEST_F(MainFrameTest, AFilterFileOnTheCommandLineFiltersTheLedgerThatOpensAnyway)
{
    user::chooseMenu(m_frame.get(),
                     settingsMenu("Отваряй последния използван документ при стартиране"));
    open();
    // Incomes only, kept in a filter file with the panel's "запиши".
    user::pickFromList(user::child<QComboBox>(m_frame.get(), "typeFilter"),
                       QStringLiteral("приходи"));
    const QString filter = m_dir.filePath(QStringLiteral("приходи.ffl"));
    user::ExpectDialog saveAs([&](QDialog* d) { user::answerFileDialog(d, filter); });
    user::click(user::button(m_frame.get(), QStringLiteral("запиши")));
    saveAs.verify();
    ASSERT_TRUE(QFile::exists(filter));
    user::press(m_frame.get(), Qt::Key_N,
                Qt::ControlModifier); // a second window would be told the ledger is open here
    ASSERT_EQ(m_frame->document().path(), "");

    // The desktop hands the file to the program on its command line: no widget leads there.
    auto other = std::make_unique<CMainFrame>(m_store, m_prompter, m_host, m_clock);
    EXPECT_TRUE(other->startUp({QStringLiteral("finora"), filter}));
    EXPECT_TRUE(other->windowTitle().startsWith(QStringLiteral("дом.fnr")));
    EXPECT_EQ(user::child<QComboBox>(other.get(), "typeFilter")->currentText(),
              QStringLiteral("приходи"));
    const QAbstractItemModel* list = other->view().table()->model();
    ASSERT_GT(list->rowCount(), 0);
    EXPECT_LT(list->rowCount(), 500);
    for (int r = 0; r < list->rowCount(); ++r) {
        EXPECT_EQ(list->index(r, kColType).data().toString(), QStringLiteral("П"));
    }
    EXPECT_TRUE(m_prompter.messages().empty());

    // A file that is no filter: said, and the program still starts.
    const QString broken = m_dir.filePath(QStringLiteral("счупен.ffl"));
    writeFile(broken.toStdString(), "not a filter");
    EXPECT_TRUE(other->startUp({QStringLiteral("finora"), broken}));
    ASSERT_EQ(m_prompter.messages().size(), 1u);
    EXPECT_EQ(lastMessage().icon, MessageIcon::Error);
}
