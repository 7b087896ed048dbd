// "&Отмени" and "&Възстанови" as a user meets them: keys and clicks on the real window, the file
// on disk read back after each.
#include "core/demo/ledger_generator.h"
#include "core/model/lock_guard.h"
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_format.h"
#include "gui/window/main_frame.h"
#include "support/desktop_session.h"
#include "support/file_bytes.h"
#include "support/scripted_host.h"
#include "support/user.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolBar>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

using Command = CMainFrame::Command;

class UndoGuiTest : public ::testing::Test {
protected:
    UndoGuiTest()
    {
        m_file = m_dir.filePath(QStringLiteral("дом.fnr"));
        writeFile(m_file.toStdString(), serializeLedger(generateLedger(600, 12)));
        m_original = bytesOf(m_file);
        m_frame = std::make_unique<CMainFrame>(m_store, m_prompter, m_host, m_clock);
        user::bringUp(m_frame.get());
        m_host.openPaths = {m_file.toStdString()};
        user::press(m_frame.get(), Qt::Key_O, Qt::ControlModifier);
        EXPECT_EQ(m_frame->document().path(), m_file.toStdString());
        m_prompter.clear();
    }

    QTableView* table() { return m_frame->view().table(); }
    // Every cell the list shows, row by row.
    QStringList shownCells()
    {
        QStringList cells;
        const QAbstractItemModel* model = table()->model();
        for (int r = 0; r < model->rowCount(); ++r) {
            for (int c = 0; c < model->columnCount(); ++c) {
                cells << model->index(r, c).data().toString();
            }
        }
        return cells;
    }
    // The keys go where a user's would: to the list, after a click on its first row.
    void pressInList(int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        user::bringUp(m_frame.get()); // back from whatever dialog came before
        if (table()->model()->rowCount() > 0) {
            QTest::mouseClick(table()->viewport(), Qt::LeftButton, {},
                              table()->visualRect(table()->model()->index(0, 3)).center());
        } else {
            table()->setFocus();
        }
        user::press(m_frame.get(), key, modifiers);
    }
    QString shownText(Command command) { return user::shown(m_frame->action(command)->text()); }
    std::string ledgerBytes() { return serializeLedger(m_frame->document().ledger()); }

    QTemporaryDir m_dir;
    MemorySettingsStore m_store;
    FixedClock m_clock{DateTime::fromParts(2026, 11, 3, 18)};
    ScriptedHost m_host;
    RecordingPrompter m_prompter{Answer::Yes};
    QString m_file;
    std::string m_original;
    std::unique_ptr<CMainFrame> m_frame;
};

} // namespace

TEST_F(UndoGuiTest, DeletedShownRowsComeBackInPlaceWithCtrlZAndGoAgainWithCtrlY)
{
    EXPECT_FALSE(m_frame->action(Command::Undo)->isEnabled());
    // Only the incomes are shown: the rows to delete lie between rows that stay.
    auto* type = m_frame->findChild<QComboBox*>(QStringLiteral("typeFilter"));
    ASSERT_NE(type, nullptr);
    type->setFocus();
    QTest::keyClick(type, Qt::Key_Down);
    const QStringList before = shownCells();
    const int rows = table()->model()->rowCount();
    ASSERT_GT(rows, 10);
    ASSERT_LT(static_cast<std::size_t>(rows), m_frame->document().operationCount());

    user::chooseMenu(m_frame.get(), {QStringLiteral("Редакция"),
                                     QStringLiteral("Изтрий всички визуализирани записи")});
    EXPECT_EQ(table()->model()->rowCount(), 0);
    const std::string afterDelete = ledgerBytes();
    const QString step = QStringLiteral("изтриване на %1 записа").arg(rows);
    EXPECT_EQ(shownText(Command::Undo), QStringLiteral("Отмени: ") + step);
    EXPECT_TRUE(m_frame->action(Command::Undo)->isEnabled());
    EXPECT_FALSE(m_frame->action(Command::Redo)->isEnabled());

    pressInList(Qt::Key_Z);
    EXPECT_EQ(shownCells(), before);
    EXPECT_EQ(ledgerBytes(), m_original);
    EXPECT_FALSE(m_frame->isWindowModified()); // back to the ledger as opened
    EXPECT_EQ(shownText(Command::Redo), QStringLiteral("Възстанови: ") + step);
    EXPECT_FALSE(m_frame->action(Command::Undo)->isEnabled());

    pressInList(Qt::Key_Y);
    EXPECT_EQ(table()->model()->rowCount(), 0);
    EXPECT_EQ(ledgerBytes(), afterDelete);
    pressInList(Qt::Key_Z);
    EXPECT_EQ(shownCells(), before);
    pressInList(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(table()->model()->rowCount(), 0);

    // The toolbar's button is the same command.
    QTest::mouseClick(m_frame->findChild<QToolBar*>(QStringLiteral("toolbar"))
                          ->widgetForAction(m_frame->action(Command::Undo)),
                      Qt::LeftButton);
    EXPECT_EQ(shownCells(), before);
}

TEST_F(UndoGuiTest, AnOperationOfTwoPaymentsSavedInTheEditorGoesWithOneCtrlZ)
{
    const std::string before = ledgerBytes();
    const std::size_t count = m_frame->document().operationCount();
    {
        user::ExpectDialog editor([](QDialog* d) {
            user::bringUp(d);
            auto* description = d->findChild<QLineEdit*>(QStringLiteral("description"));
            description->setFocus();
            user::type(description, QStringLiteral("Ремонт на покрива"));
            chooseFirstCategory(d);
            EXPECT_NE(d->findChild<QLabel*>(QStringLiteral("category"))->text(),
                      QStringLiteral("изберете категория"));
            user::bringUp(d);
            for (const QString& amount : {QStringLiteral("300"), QStringLiteral("450")}) {
                auto* field = d->findChild<QLineEdit*>(QStringLiteral("amount"));
                field->setFocus();
                QTest::keyClicks(field, amount);
                user::click(user::button(d, QStringLiteral("добави/промени")));
            }
            user::click(user::button(d, QStringLiteral("съхрани")));
        });
        user::press(m_frame.get(), Qt::Key_F8);
    }
    ASSERT_EQ(m_frame->document().operationCount(), count + 2);
    EXPECT_EQ(table()->model()->index(0, 3).data().toString(), QStringLiteral("Ремонт на покрива"));
    EXPECT_EQ(shownText(Command::Undo), QStringLiteral("Отмени: нова операция"));

    pressInList(Qt::Key_Z);
    EXPECT_EQ(m_frame->document().operationCount(), count);
    // The ids and the master id it drew are taken back with it.
    EXPECT_EQ(ledgerBytes(), before);
    EXPECT_NE(table()->model()->index(0, 3).data().toString(), QStringLiteral("Ремонт на покрива"));
    EXPECT_FALSE(m_frame->action(Command::Undo)->isEnabled());
}

TEST_F(UndoGuiTest, WithAutoSaveTheFileOnDiskFollowsEachUndoAndRedo)
{
    m_store.writeInt("Settings", "AutoSave", 1);
    // Five rows chosen with the mouse, deleted from the menu: the file is written at once.
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {},
                      table()->visualRect(table()->model()->index(2, 3)).center());
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, Qt::ShiftModifier,
                      table()->visualRect(table()->model()->index(6, 3)).center());
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Редакция"), QStringLiteral("Изтрий маркираните")});
    const std::string deleted = bytesOf(m_file);
    ASSERT_NE(deleted, m_original);
    EXPECT_EQ(m_frame->document().operationCount(), 595u);

    pressInList(Qt::Key_Z);
    EXPECT_EQ(bytesOf(m_file), m_original);
    EXPECT_FALSE(m_frame->isWindowModified());
    pressInList(Qt::Key_Y);
    EXPECT_EQ(bytesOf(m_file), deleted);
    user::chooseMenu(m_frame.get(),
                     {QStringLiteral("Редакция"), QStringLiteral("Отмени: изтриване на 5 записа")});
    EXPECT_EQ(bytesOf(m_file), m_original);
    EXPECT_FALSE(m_frame->isWindowModified());
}
