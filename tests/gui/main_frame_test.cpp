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
    EXPECT_EQ(table()->model()->columnCount(), kListColumnCount); // the euro one hidden
    EXPECT_EQ(table()->model()->headerData(3, Qt::Horizontal).toString(),
              QStringLiteral("описание"));
    // Newest entry of the ledger on top, the first one at the bottom, selected.
    EXPECT_EQ(cell(0, 0), QStringLiteral("500"));
    EXPECT_EQ(cell(499, 0), QStringLiteral("1"));
    ASSERT_EQ(table()->selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(table()->selectionModel()->selectedRows().at(0).row(), 499);
    EXPECT_TRUE(table()->isColumnHidden(0));
    EXPECT_FALSE(table()->isColumnHidden(2));
    const auto* income = user::child<QLabel>(m_frame.get(), "income");
    ASSERT_NE(income, nullptr);
    EXPECT_TRUE(income->text().endsWith(QStringLiteral(" BGL")));
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
    EXPECT_TRUE(user::lookAtMenu(m_frame.get(),
                                 {QStringLiteral("Редакция"), QStringLiteral("Изтрий маркираните")})
                    ->isEnabled());
    m_prompter.queue(Answer::No);
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Редакция"), QStringLiteral("Изтрий маркираните")});
    EXPECT_EQ(shownRows(), 500);
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Редакция"), QStringLiteral("Изтрий маркираните")});
    EXPECT_EQ(m_frame->document().operationCount(), 499u);
    EXPECT_EQ(shownRows(), 499);
    EXPECT_NE(cell(0, 0), clicked);
    EXPECT_EQ(lastMessage().caption, "Потвърдете");
    EXPECT_TRUE(m_frame->isWindowModified());

    user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_FALSE(m_frame->isWindowModified());
    EXPECT_EQ(ledgerOnDisk().operations.size(), 499u);
}

TEST_F(MainFrameTest, ClosingAModifiedLedgerAsksAndCancelKeepsItOpen)
{
    open();
    user::clickIndex(table(), table()->model()->index(0, 3));
    user::press(m_frame.get(), Qt::Key_A, Qt::ControlModifier);
    user::chooseMenu(m_frame.get(), {QStringLiteral("Редакция"),
                                     QStringLiteral("Установи маркираните записи като изплатени")});
    EXPECT_TRUE(m_frame->isWindowModified());
    m_prompter.queue(Answer::Cancel);
    user::chooseMenu(m_frame.get(), {QStringLiteral("Файл"), QStringLiteral("Изход")});
    EXPECT_TRUE(m_frame->isVisible());
    EXPECT_EQ(lastMessage().text, DocumentStorage::kSaveChangesText);
    m_prompter.queue(Answer::No);
    user::chooseMenu(m_frame.get(), {QStringLiteral("Файл"), QStringLiteral("Изход")});
    EXPECT_FALSE(m_frame->isVisible());
}

TEST_F(MainFrameTest, ANewerFileAsksTheHostToEndTheProgram)
{
    const QString newer = m_dir.filePath(QStringLiteral("newer.fnr"));
    std::string bytes = serializeLedger(Ledger());
    bytes.replace(0, 8, std::string("\x00\x00\x00\x00\x00\x00\xF8\x3F", 8)); // 1.5
    writeFile(newer.toStdString(), bytes);
    openWithKeys(newer);
    EXPECT_EQ(m_host.exits, std::vector<int>{0});
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
    EXPECT_EQ(lastMessage(),
              (Message{"Липсва селекция", "Не сте избрали категория от списъка на категориите!",
                       MessageIcon::Error, MessageButtons::Ok}));

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
    // Each shown entry is filed under the top category or one of its children (the cell shows
    // one level of parent).
    QStringList parents{top->text(0)};
    for (int c = 0; c < top->childCount(); ++c) {
        parents << top->child(c)->text(0);
    }
    for (int r = 0; r < shown; ++r) {
        EXPECT_TRUE(parents.contains(cell(r, 5).section(QStringLiteral(" :: "), 0, 0)))
            << cell(r, 5).toStdString();
    }

    // Emptying the chosen categories shows every entry again.
    QAbstractButton* clear = user::button(m_frame.get(), QStringLiteral("изчисти"));
    user::click(clear);
    EXPECT_EQ(selected->topLevelItemCount(), 0);
    EXPECT_FALSE(clear->isEnabled());
    EXPECT_EQ(shownRows(), 500);
}

TEST_F(MainFrameTest, ALedgerNamedRelativeOnTheCommandLineIsRememberedByItsWholePath)
{
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(QFileInfo(m_file).path()));
    // The command line is the program's own start: no widget leads there.
    const bool opened = m_frame->startUp({QStringLiteral("finora"), QFileInfo(m_file).fileName()});
    QDir::setCurrent(before);
    ASSERT_TRUE(opened);
    EXPECT_EQ(m_store.readText("Settings", "LastFileUsed", ""), m_file.toStdString());
    EXPECT_EQ(user::menuTexts(m_frame.get(),
                              {QStringLiteral("Файл"), QStringLiteral("Последно отваряни")}),
              QStringList{QStringLiteral("1 ") + m_file});
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

    open();
    EXPECT_EQ(m_store.readText("Settings", "LastFileUsed", ""), m_file.toStdString());
    EXPECT_EQ(user::menuTexts(m_frame.get(),
                              {QStringLiteral("Файл"), QStringLiteral("Последно отваряни")}),
              QStringList{QStringLiteral("1 ") + m_file});

    user::chooseMenu(m_frame.get(), showToday);
    EXPECT_TRUE(user::lookAtMenu(m_frame.get(), showToday)->isChecked());
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

    // A file that cannot be opened on the command line ends start-up.
    EXPECT_FALSE(
        other->startUp({QStringLiteral("finora"), m_dir.filePath(QStringLiteral("няма.fnr"))}));
}

TEST_F(MainFrameTest, RecentFilesKeepTheLatestFourWithoutRepeats)
{
    QStringList made;
    for (int i = 0; i < 5; ++i) {
        const QString path = m_dir.filePath(QStringLiteral("l%1.fnr").arg(i));
        writeFile(path.toStdString(), serializeLedger(Ledger()));
        openWithKeys(path);
        ASSERT_EQ(m_frame->document().path(), path.toStdString());
        made.prepend(path);
    }
    const QStringList recent = {QStringLiteral("Файл"), QStringLiteral("Последно отваряни")};
    // The third of the menu is opened from it again, and goes to the top.
    user::chooseMenu(m_frame.get(),
                     {recent.at(0), recent.at(1), QStringLiteral("3 ") + made.at(2)});
    EXPECT_EQ(m_frame->document().path(), made.at(2).toStdString());
    EXPECT_EQ(user::menuTexts(m_frame.get(), recent),
              (QStringList{QStringLiteral("1 ") + made.at(2), QStringLiteral("2 ") + made.at(0),
                           QStringLiteral("3 ") + made.at(1), QStringLiteral("4 ") + made.at(3)}));
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

TEST_F(MainFrameTest, SearchAndProtectionThroughTheirDialogs)
{
    open();
    user::ExpectDialog search([](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("Търсене"));
        user::retype(user::child<QLineEdit>(d, "searchText"), QStringLiteral("ПАЗАР"));
        tick(d, QStringLiteral("описание"));
        tick(d, QStringLiteral("показвай само съвпадащите редове"));
        user::click(user::button(d, QStringLiteral("търси")));
    });
    user::press(m_frame.get(), Qt::Key_F3);
    search.verify();
    const int found = shownRows();
    EXPECT_GT(found, 0);
    EXPECT_LT(found, 500);
    for (int r = 0; r < found; ++r) {
        EXPECT_TRUE(cell(r, 3).contains(QStringLiteral("пазар"), Qt::CaseInsensitive));
    }
    EXPECT_EQ(lastMessage().text, OperationsList::kSearchDoneText);

    // Lock with a password typed twice: the list empties and F12 becomes the way back in.
    user::ExpectDialog lock([](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("Заключване"));
        for (QLineEdit* field : d->findChildren<QLineEdit*>()) {
            user::retype(field, QStringLiteral("тайна"));
        }
        user::click(user::button(d, QStringLiteral("OK")));
    });
    user::chooseMenu(m_frame.get(), settingsMenu("Задаване на постоянна защита"));
    lock.verify();
    EXPECT_TRUE(m_frame->document().isLocked());
    EXPECT_EQ(shownRows(), 0);
    EXPECT_TRUE(user::lookAtMenu(m_frame.get(), settingsMenu("Временно отключване"))->isEnabled());
    EXPECT_NE(user::lookAtMenu(m_frame.get(), settingsMenu("Премахване на постоянната защита")),
              nullptr);

    user::ExpectDialog unlock([](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("Отключване"));
        const auto fields = d->findChildren<QLineEdit*>();
        ASSERT_EQ(fields.size(), 2);
        EXPECT_FALSE(fields.at(1)->isEnabled()); // once is enough to unlock
        user::type(fields.at(0), QStringLiteral("тайна"));
        QTest::keyClick(fields.at(0), Qt::Key_Return);
    });
    user::press(m_frame.get(), Qt::Key_F12);
    unlock.verify();
    EXPECT_FALSE(m_frame->document().isLocked());
    EXPECT_EQ(shownRows(), 500);
    EXPECT_FALSE(user::lookAtMenu(m_frame.get(), settingsMenu("Заключи"))->isEnabled());
}

TEST_F(MainFrameTest, TheBackupFolderIsChosenCheckedAndCreated)
{
    const QStringList ownFolder = settingsMenu("Създавай резервни копия в директория ...");
    const QStringList beside = settingsMenu("Използвай директорията на файла");
    const QString folder = m_dir.filePath(QStringLiteral("копия/2026"));
    user::ExpectDialog choose([folder](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("Изберете директория с двойно кликване ..."));
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

    user::ExpectDialog same([folder](QDialog* d) {
        EXPECT_EQ(user::child<QLineEdit>(d, "folder")->text(), folder + QLatin1Char('/'));
        QTest::keyClick(d, Qt::Key_Return);
    });
    user::chooseMenu(m_frame.get(), ownFolder);
    same.verify();
    EXPECT_EQ(lastMessage().text, "Не е указана промяна в директорията.");

    user::chooseMenu(m_frame.get(), beside);
    EXPECT_EQ(m_store.readText("Settings", "BackupDir", "x"), "");
    EXPECT_TRUE(user::lookAtMenu(m_frame.get(), beside)->isChecked());
}

TEST_F(MainFrameTest, ToolbarAndACurrencyListThatFollowsTheLedger)
{
    open();
    auto* tools = user::child<QToolBar>(m_frame.get(), "toolbar");
    ASSERT_NE(tools, nullptr);
    QStringList buttons;
    for (QAction* a : tools->actions()) {
        if (QWidget* b = tools->widgetForAction(a); b && b->isVisible()) {
            buttons << b->toolTip();
        }
    }
    EXPECT_EQ(buttons.size(), 8) << buttons.join(QLatin1Char(',')).toStdString();
    EXPECT_TRUE(buttons.contains(QStringLiteral("Опресни")))
        << buttons.join(QLatin1Char(',')).toStdString();

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
    // them; the rows are the ones the list shows.
    std::vector<int> columns;
    QStringList headers;
    for (int c = 0; c < table()->model()->columnCount(); ++c) {
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

TEST_F(MainFrameTest, TheAboutBoxEndsTheHelpMenuWithVersionLicenceAndQt)
{
    const QStringList help = user::menuTexts(m_frame.get(), {QStringLiteral("Помощ")});
    ASSERT_FALSE(help.isEmpty());
    EXPECT_EQ(help.last(), QStringLiteral("За програмата ..."));
    user::chooseMenu(m_frame.get(), {QStringLiteral("Помощ"), QStringLiteral("За програмата ...")});
    ASSERT_EQ(m_prompter.messages().size(), 1u);
    const Message& box = lastMessage();
    EXPECT_EQ(box.caption, "За Finora");
    EXPECT_EQ(box.icon, MessageIcon::Program);
    EXPECT_EQ(box.text.rfind("Finora 1.501\n", 0), 0u) << box.text;
    EXPECT_NE(box.text.find("Лиценз: MIT"), std::string::npos);
    EXPECT_NE(box.text.find(std::string("Qt ") + qVersion()), std::string::npos);
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

TEST_F(MainFrameTest, EveryCommandHasItsOwnActionFoundByItsObjectName)
{
    QSet<QString> names;
    for (std::size_t i = 0; i < CMainFrame::kCommandCount; ++i) {
        QAction* action = m_frame->action(static_cast<CMainFrame::Command>(i));
        ASSERT_NE(action, nullptr) << i;
        EXPECT_TRUE(action->objectName().startsWith(QStringLiteral("action"))) << i;
        EXPECT_FALSE(action->text().isEmpty()) << i;
        EXPECT_EQ(m_frame->findChild<QAction*>(action->objectName()), action) << i;
        names.insert(action->objectName());
    }
    EXPECT_EQ(static_cast<std::size_t>(names.size()), CMainFrame::kCommandCount);
    EXPECT_EQ(m_frame->action(CMainFrame::Command::Save)->objectName(),
              QStringLiteral("actionSave"));
}
