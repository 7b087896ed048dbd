// The desktop program's window, driven offscreen through its actions with scripted answers.
#include "app/main_frame.h"
#include "demo/ledger_generator.h"
#include "model/recording_prompter.h"
#include "support/scripted_host.h"
#include "support/dialog_driver.h"
#include "settings/memory_settings_store.h"
#include "storage/file_io.h"
#include "storage/filter_file.h"
#include "storage/ledger_format.h"
#include "text/cp1251.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QDialog>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QTimer>
#include <QCheckBox>
#include <QComboBox>
#include <QToolBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QTableView>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace finora;
using test::ScriptedHost;
using test::answerNextDialog;

namespace {

// A menu of the menu bar by its title, or null.
QMenu* menuTitled(CMainFrame& frame, const QString& title)
{
    for (QAction* top : frame.menuBar()->actions()) {
        if (top->text() == title) {
            return top->menu();
        }
    }
    return nullptr;
}

} // namespace

class MainFrameTest : public ::testing::Test {
protected:
    MainFrameTest()
    {
        m_file = m_dir.filePath(QStringLiteral("дом.fnr"));
        writeFile(m_file.toStdString(), serializeLedger(generateLedger(500, 3)));
        m_frame = std::make_unique<CMainFrame>(m_store, m_prompter, m_host, m_clock);
    }

    MemorySettingsStore m_store;
    FixedClock m_clock{DateTime::fromParts(2026, 11, 1, 12)};
    ScriptedHost m_host;
    RecordingPrompter m_prompter{Answer::Yes};
    QTemporaryDir m_dir;
    QString m_file;
    std::unique_ptr<CMainFrame> m_frame;
};

TEST_F(MainFrameTest, OpensALedgerIntoTheList)
{
    ASSERT_TRUE(m_frame->openLedger(m_file));
    auto* table = m_frame->view().table();
    QAbstractItemModelTester tester(table->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(table->model()->rowCount(), 500);
    EXPECT_EQ(table->model()->columnCount(), 12);
    EXPECT_EQ(table->model()->headerData(3, Qt::Horizontal).toString(), QStringLiteral("описание"));
    // Newest entry of the ledger on top, the first one at the bottom, selected.
    EXPECT_EQ(table->model()->index(0, 0).data().toString(), QStringLiteral("500"));
    EXPECT_EQ(table->model()->index(499, 0).data().toString(), QStringLiteral("1"));
    ASSERT_EQ(table->selectionModel()->selectedRows().size(), 1);
    EXPECT_EQ(table->selectionModel()->selectedRows().at(0).row(), 499);
    EXPECT_TRUE(table->isColumnHidden(0));
    EXPECT_FALSE(table->isColumnHidden(2));
    const auto* income = m_frame->findChild<QLabel*>(QStringLiteral("income"));
    ASSERT_NE(income, nullptr);
    EXPECT_TRUE(income->text().endsWith(QStringLiteral(" BGL")));
    EXPECT_EQ(income->text().toStdString(), m_frame->view().list().totals().incomeText());
    EXPECT_TRUE(m_frame->windowTitle().startsWith(QStringLiteral("дом.fnr")));
    EXPECT_TRUE(m_prompter.messages().empty());
}

TEST_F(MainFrameTest, DeletesTheSelectedRowsAfterAskingAndSaves)
{
    ASSERT_TRUE(m_frame->openLedger(m_file));
    auto* table = m_frame->view().table();
    table->selectRow(0);
    EXPECT_TRUE(m_frame->action("actionDeleteSelected")->isEnabled());
    m_prompter.queue(Answer::No);
    m_frame->action("actionDeleteSelected")->trigger();
    EXPECT_EQ(table->model()->rowCount(), 500);
    m_frame->action("actionDeleteSelected")->trigger();
    EXPECT_EQ(m_frame->document().operationCount(), 499u);
    EXPECT_EQ(table->model()->rowCount(), 499);
    EXPECT_EQ(m_prompter.messages().back().caption, "Потвърдете");
    EXPECT_TRUE(m_frame->isWindowModified());

    m_frame->action("actionSave")->trigger();
    EXPECT_FALSE(m_frame->isWindowModified());
    std::string bytes;
    ASSERT_TRUE(readWholeFile(m_file.toStdString(), bytes));
    Ledger reread;
    ByteReader reader(bytes);
    ASSERT_EQ(readLedger(reader, reread, [](double) { return true; }).status, ReadStatus::Ok);
    EXPECT_EQ(reread.operations.size(), 499u);
}

TEST_F(MainFrameTest, ClosingAModifiedLedgerAsksAndCancelKeepsItOpen)
{
    ASSERT_TRUE(m_frame->openLedger(m_file));
    m_frame->action("actionSelectAll")->trigger();
    m_frame->action("actionSetPaid")->trigger();
    EXPECT_TRUE(m_frame->document().isModified());
    m_prompter.queue(Answer::Cancel);
    EXPECT_FALSE(m_frame->close());
    EXPECT_EQ(m_prompter.messages().back().text, DocumentStorage::kSaveChangesText);
    m_prompter.queue(Answer::No);
    EXPECT_TRUE(m_frame->close());
}

TEST_F(MainFrameTest, ANewerFileAsksTheHostToEndTheProgram)
{
    const QString newer = m_dir.filePath(QStringLiteral("newer.fnr"));
    std::string bytes = serializeLedger(Ledger());
    bytes.replace(0, 8, std::string("\x00\x00\x00\x00\x00\x00\xF8\x3F", 8)); // 1.5
    writeFile(newer.toStdString(), bytes);
    EXPECT_FALSE(m_frame->openLedger(newer));
    EXPECT_EQ(m_host.exits, std::vector<int>{0});
}

TEST_F(MainFrameTest, TheFilterPanelNarrowsTheList)
{
    ASSERT_TRUE(m_frame->openLedger(m_file));
    auto* table = m_frame->view().table();
    auto* tree = m_frame->findChild<QTreeWidget*>(QStringLiteral("categoryTree"));
    auto* selected = m_frame->findChild<QTreeWidget*>(QStringLiteral("selectedCategories"));
    ASSERT_TRUE(tree && selected);

    // F2 with nothing chosen in the tree says so.
    m_frame->action("actionAddCategoryToFilter")->trigger();
    EXPECT_EQ(m_prompter.messages().back(),
              (Message{"Липсва селекция", "Не сте избрали категория от списъка на категориите!",
                       MessageIcon::Error, MessageButtons::Ok}));

    // A top-level category holds no entries of its own in a generated ledger...
    QTreeWidgetItem* top = tree->topLevelItem(0);
    tree->setCurrentItem(top);
    m_frame->action("actionAddCategoryToFilter")->trigger();
    m_frame->action("actionAddCategoryToFilter")->trigger(); // twice: one row
    EXPECT_EQ(selected->topLevelItemCount(), 1);
    EXPECT_EQ(table->model()->rowCount(), 0);
    // ...until its subcategories count.
    m_frame->findChild<QCheckBox*>(QStringLiteral("includeSubcategories"))->setChecked(true);
    EXPECT_EQ(m_store.readInt("Settings", "ShowDataForSubCategories", 0), 1);
    const int shown = table->model()->rowCount();
    EXPECT_GT(shown, 0);
    EXPECT_LT(shown, 500);
    // Each shown entry is filed under the top category or one of its children (the cell shows
    // one level of parent).
    QStringList parents{top->text(0)};
    for (int c = 0; c < top->childCount(); ++c) {
        parents << top->child(c)->text(0);
    }
    for (int r = 0; r < shown; ++r) {
        const QString cell = table->model()->index(r, 5).data().toString();
        EXPECT_TRUE(parents.contains(cell.section(QStringLiteral(" :: "), 0, 0))) << cell.toStdString();
    }

    // Emptying the chosen categories shows every entry again.
    QPushButton* clear = nullptr;
    for (QPushButton* b : m_frame->findChildren<QPushButton*>()) {
        if (b->text() == QStringLiteral("изчисти")) {
            clear = b;
        }
    }
    ASSERT_NE(clear, nullptr);
    EXPECT_TRUE(clear->isEnabled());
    clear->click();
    EXPECT_EQ(selected->topLevelItemCount(), 0);
    EXPECT_FALSE(clear->isEnabled());
    EXPECT_EQ(table->model()->rowCount(), 500);
}

TEST_F(MainFrameTest, StartUpReopensTheLastLedgerAndShowsTodayWhenAsked)
{
    // AutoOpen off, or nothing used yet: an empty ledger and no message.
    m_store.writeInt("Settings", "AutoOpen", 1);
    EXPECT_TRUE(m_frame->startUp({QStringLiteral("finora")}));
    EXPECT_EQ(m_frame->document().operationCount(), 0u);
    EXPECT_TRUE(m_prompter.messages().empty());

    ASSERT_TRUE(m_frame->openLedger(m_file));
    EXPECT_EQ(m_store.readText("Settings", "LastFileUsed", ""), m_file.toStdString());
    EXPECT_EQ(m_frame->recentFiles(), QStringList{m_file});

    m_store.writeInt("Settings", "ShowForTodayOnOpen", 1);
    auto other = std::make_unique<CMainFrame>(m_store, m_prompter, m_host, m_clock);
    EXPECT_TRUE(other->startUp({QStringLiteral("finora")}));
    EXPECT_EQ(other->document().operationCount(), 500u);
    // The period is today alone.
    const FilterCriteria& c = other->view().list().criteria();
    EXPECT_TRUE(c.from.isSameDay(m_clock.now()));
    EXPECT_TRUE(c.to.isSameDay(m_clock.now()));

    // A file that cannot be opened on the command line ends start-up.
    EXPECT_FALSE(other->startUp({QStringLiteral("finora"), m_dir.filePath(QStringLiteral("няма.fnr"))}));
}

TEST_F(MainFrameTest, RecentFilesKeepTheLatestFourWithoutRepeats)
{
    QStringList made;
    for (int i = 0; i < 5; ++i) {
        const QString path = m_dir.filePath(QStringLiteral("l%1.fnr").arg(i));
        writeFile(path.toStdString(), serializeLedger(Ledger()));
        ASSERT_TRUE(m_frame->openLedger(path));
        made.prepend(path);
    }
    ASSERT_TRUE(m_frame->openLedger(made.at(2)));
    EXPECT_EQ(m_frame->recentFiles(), (QStringList{made.at(2), made.at(0), made.at(1), made.at(3)}));
}

TEST_F(MainFrameTest, TheCalculatorCommandSaysWhenThereIsNone)
{
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nonexistent");
    m_frame->action("actionCalculator")->trigger();
    qputenv("PATH", path);
    ASSERT_FALSE(m_prompter.messages().empty());
    EXPECT_EQ(m_prompter.messages().back(),
              (Message{"Липсваща програма", CMainFrame::kCalculatorMissingText, MessageIcon::Error,
                       MessageButtons::Ok}));
}


TEST_F(MainFrameTest, SearchAndProtectionThroughTheirDialogs)
{
    ASSERT_TRUE(m_frame->openLedger(m_file));
    auto* table = m_frame->view().table();
    answerNextDialog([](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("Търсене"));
        d->findChild<QLineEdit*>()->setText(QStringLiteral("ПАЗАР"));
        for (QCheckBox* box : d->findChildren<QCheckBox*>()) {
            if (box->text() == QStringLiteral("описание") ||
                box->text() == QStringLiteral("показвай само съвпадащите редове")) {
                box->setChecked(true);
            }
        }
        d->accept();
    });
    m_frame->action("actionSearch")->trigger();
    const int found = table->model()->rowCount();
    EXPECT_GT(found, 0);
    EXPECT_LT(found, 500);
    for (int r = 0; r < found; ++r) {
        EXPECT_TRUE(table->model()->index(r, 3).data().toString().contains(QStringLiteral("пазар"), Qt::CaseInsensitive));
    }
    EXPECT_EQ(m_prompter.messages().back().text, OperationsList::kSearchDoneText);

    // Lock with a password typed twice: the list empties and F12 becomes the way back in.
    answerNextDialog([](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("Заключване"));
        for (QLineEdit* field : d->findChildren<QLineEdit*>()) {
            field->setText(QStringLiteral("тайна"));
        }
        d->accept();
    });
    m_frame->action("actionPermanentProtection")->trigger();
    EXPECT_TRUE(m_frame->document().isLocked());
    EXPECT_EQ(table->model()->rowCount(), 0);
    EXPECT_TRUE(m_frame->action("actionTemporaryUnlock")->isEnabled());
    EXPECT_EQ(m_frame->action("actionPermanentProtection")->text(),
              QStringLiteral("Премахване на постоянната защита"));

    answerNextDialog([](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("Отключване"));
        d->findChildren<QLineEdit*>().at(0)->setText(QStringLiteral("тайна"));
        d->accept();
    });
    m_frame->action("actionTemporaryUnlock")->trigger();
    EXPECT_FALSE(m_frame->document().isLocked());
    EXPECT_EQ(table->model()->rowCount(), 500);
    EXPECT_FALSE(m_frame->action("actionTemporaryUnlock")->isEnabled());
}

TEST_F(MainFrameTest, TheBackupFolderIsChosenCheckedAndCreated)
{
    const QString folder = m_dir.filePath(QStringLiteral("копия/2026"));
    answerNextDialog([folder](QDialog* d) {
        EXPECT_EQ(d->windowTitle(), QStringLiteral("Изберете директория с двойно кликване ..."));
        d->findChild<QLineEdit*>(QStringLiteral("folder"))->setText(folder);
        d->accept(); // the creation question is answered yes
    });
    m_frame->action("actionBackupFolder")->trigger();
    EXPECT_TRUE(QFileInfo(folder).isDir());
    EXPECT_EQ(m_store.readText("Settings", "BackupDir", ""), folder.toStdString() + "/");

    answerNextDialog([](QDialog* d) { d->accept(); }); // the same folder again
    m_frame->action("actionBackupFolder")->trigger();
    EXPECT_EQ(m_prompter.messages().back().text, "Не е указана промяна в директорията.");

    m_frame->action("actionBackupBeside")->trigger();
    EXPECT_EQ(m_store.readText("Settings", "BackupDir", "x"), "");
}

TEST_F(MainFrameTest, ToolbarAndACurrencyListThatFollowsTheLedger)
{
    ASSERT_TRUE(m_frame->openLedger(m_file));
    const auto* tools = m_frame->findChild<QToolBar*>(QStringLiteral("toolbar"));
    ASSERT_NE(tools, nullptr);
    EXPECT_EQ(tools->actions().size(), 8);
    EXPECT_TRUE(tools->actions().contains(m_frame->action("actionRefresh")));

    auto* currency = m_frame->findChild<QComboBox*>(QStringLiteral("currencyFilter"));
    ASSERT_NE(currency, nullptr);
    EXPECT_EQ(currency->itemText(0), QStringLiteral(":: ВСИЧКИ ВАЛУТИ В BGL ::"));
    EXPECT_LT(currency->findText(QStringLiteral("CHF")), 0);
    m_frame->document().addCurrency("CHF");
    currency->showPopup();
    currency->hidePopup();
    EXPECT_GE(currency->findText(QStringLiteral("CHF")), 0);
    EXPECT_EQ(currency->currentIndex(), 0); // refilling did not change the choice
    EXPECT_EQ(m_frame->view().list().rowCount(), 500u);
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
            if (c == QLatin1Char('"') && i + 1 < text.size() && text.at(i + 1) == QLatin1Char('"')) {
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
        } else if (c == QLatin1Char('\r') && i + 1 < text.size() && text.at(i + 1) == QLatin1Char('\n')) {
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

TEST_F(MainFrameTest, TheShownListIsWrittenAsCsvAfterASearchThatKeepsOnlyMatches)
{
    ASSERT_TRUE(m_frame->openLedger(m_file));
    m_frame->action("actionColumn7")->trigger(); // "Забележки" hidden
    m_frame->show();
    m_frame->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_frame.get()));
    auto* table = m_frame->view().table();
    table->setFocus();

    // F3, the word typed key by key, "описание" and "show only the matching rows" clicked, Enter.
    answerNextDialog([](QDialog* d) {
        auto* text = d->findChild<QLineEdit*>();
        ASSERT_NE(text, nullptr);
        test::typeKeys(text, QStringLiteral("пазар"));
        for (const QString& option : {QStringLiteral("описание"), QStringLiteral("показвай само съвпадащите редове")}) {
            auto* box = test::buttonWithText<QCheckBox>(d, option);
            ASSERT_NE(box, nullptr);
            if (!box->isChecked()) {
                QTest::mouseClick(box, Qt::LeftButton);
            }
            ASSERT_TRUE(box->isChecked());
        }
        QTest::keyClick(text, Qt::Key_Return);
        EXPECT_FALSE(d->isVisible());
    });
    QTest::keyClick(table, Qt::Key_F3);
    const int shown = table->model()->rowCount();
    ASSERT_GT(shown, 0);
    ASSERT_LT(shown, 500);

    // Файл, then "Запиши списъка като CSV ...", with the mouse.
    const QString csvPath = m_dir.filePath(QStringLiteral("пазар"));
    m_host.exportPaths.push_back(csvPath.toStdString());
    QMenu* file = menuTitled(*m_frame, QStringLiteral("&Файл"));
    ASSERT_NE(file, nullptr);
    QTest::mouseClick(m_frame->menuBar(), Qt::LeftButton, {},
                      m_frame->menuBar()->actionGeometry(file->menuAction()).center());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(file));
    QAction* exportCsv = m_frame->action("actionExportCsv");
    ASSERT_EQ(exportCsv->text(), QStringLiteral("Запиши списъка като CSV ..."));
    QTest::mouseClick(file, Qt::LeftButton, {}, file->actionGeometry(exportCsv).center());

    ASSERT_EQ(m_host.exportRequests.size(), 1u);
    EXPECT_EQ(m_host.exportRequests[0].filter, "CSV (*.csv)");
    QFile written(csvPath + QStringLiteral(".csv")); // the extension is added
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const std::vector<QStringList> records = parseCsv(QString::fromUtf8(written.readAll()));

    // The header and every row hold the shown columns only, in the table's order and texts.
    std::vector<int> columns;
    QStringList headers;
    for (int c = 0; c < table->model()->columnCount(); ++c) {
        if (!table->isColumnHidden(c)) {
            columns.push_back(c);
            headers << table->model()->headerData(c, Qt::Horizontal).toString();
        }
    }
    EXPECT_FALSE(headers.contains(QStringLiteral("забележки")));
    EXPECT_TRUE(headers.contains(QStringLiteral("описание")));
    ASSERT_EQ(records.size(), static_cast<std::size_t>(shown) + 1);
    EXPECT_EQ(records[0], headers);
    for (int r = 0; r < shown; ++r) {
        QStringList cells;
        for (int c : columns) {
            cells << table->model()->index(r, c).data().toString();
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
    QMenu* help = menuTitled(*m_frame, QStringLiteral("&Помощ"));
    ASSERT_NE(help, nullptr);
    QAction* about = m_frame->action("actionAbout");
    EXPECT_EQ(help->actions().last(), about);
    EXPECT_EQ(about->text(), QStringLiteral("За програмата ..."));
    about->trigger();
    ASSERT_EQ(m_prompter.messages().size(), 1u);
    const Message& box = m_prompter.messages().back();
    EXPECT_EQ(box.caption, "За Finora");
    EXPECT_EQ(box.icon, MessageIcon::Program);
    EXPECT_EQ(box.text.rfind("Finora 1.501\n", 0), 0u) << box.text;
    EXPECT_NE(box.text.find("Лиценз: MIT"), std::string::npos);
    EXPECT_NE(box.text.find(std::string("Qt ") + qVersion()), std::string::npos);
}

TEST_F(MainFrameTest, AFilterFileOnTheCommandLineFiltersTheLedgerThatOpensAnyway)
{
    m_store.writeInt("Settings", "AutoOpen", 1);
    ASSERT_TRUE(m_frame->openLedger(m_file));
    StoredFilter incomeOnly;
    resetCriteria(incomeOnly.criteria, m_frame->document(), m_clock.now());
    incomeOnly.criteria.typeFilter = 1;
    const QString filter = m_dir.filePath(QStringLiteral("приходи.FFL"));
    ASSERT_TRUE(saveFilterFile(filter.toStdString(), incomeOnly));
    ASSERT_TRUE(m_frame->newLedger()); // a second window would be told the ledger is open here

    auto other = std::make_unique<CMainFrame>(m_store, m_prompter, m_host, m_clock);
    EXPECT_TRUE(other->startUp({QStringLiteral("finora"), filter}));
    EXPECT_EQ(other->document().operationCount(), 500u);
    EXPECT_EQ(other->view().list().criteria().typeFilter, 1);
    const OperationsList& list = other->view().list();
    ASSERT_GT(list.rowCount(), 0u);
    EXPECT_LT(list.rowCount(), 500u);
    for (std::size_t r = 0; r < list.rowCount(); ++r) {
        EXPECT_EQ(cp1251::toUtf8(list.cellText(r, kColType)), "П");
    }
    EXPECT_TRUE(m_prompter.messages().empty());

    // A file that is no filter: said, and the program still starts.
    const QString broken = m_dir.filePath(QStringLiteral("счупен.ffl"));
    writeFile(broken.toStdString(), "not a filter");
    EXPECT_TRUE(other->startUp({QStringLiteral("finora"), broken}));
    ASSERT_EQ(m_prompter.messages().size(), 1u);
    EXPECT_EQ(m_prompter.messages().back().icon, MessageIcon::Error);
}
