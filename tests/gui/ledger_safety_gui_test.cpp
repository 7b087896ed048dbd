// Every route into an open, tried as a user does, must leave the ledger that was open whole on
// disk when the new file cannot be read; the program's exits finish their backups; a second
// window and a change on disk are told about.
#include "core/demo/ledger_generator.h"
#include "core/model/lock_guard.h"
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_format.h"
#include "gui/window/main_frame.h"
#include "gui/window/qt_document_host.h"
#include "support/desktop_session.h"
#include "support/file_bytes.h"
#include "support/scripted_host.h"
#include "support/user.h"

#include <QComboBox>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QTableView>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <deque>
#include <gtest/gtest.h>

using namespace finora;
using namespace finora::test;

namespace {

class LedgerSafetyTest : public DesktopSession {
protected:
    LedgerSafetyTest()
    {
        writeGenerated(QStringLiteral("дом.fnr"), 500, 3);
        startFrame();
        // The user opens the ledger and saves it once, so it has its backup.
        openWithKeys(m_file);
        EXPECT_EQ(m_frame->document().path(), m_file.toStdString());
        user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
        // The backup is written beside, on its own thread, and appears whole.
        EXPECT_TRUE(
            QTest::qWaitFor([&] { return QFile::exists(m_file + QStringLiteral(".bak")); }, 5000));
        m_ledgerBefore = bytesOf(m_file);
        m_backupBefore = bytesOf(m_file + QStringLiteral(".bak"));
        EXPECT_FALSE(m_backupBefore.empty());
        m_prompter.clear();
    }

    std::unique_ptr<CMainFrame> makeFrame(Prompter& prompter, DocumentHost& host)
    {
        return std::make_unique<CMainFrame>(m_store, prompter, host, m_clock);
    }
    QString file(const char* name) const { return m_dir.filePath(QString::fromUtf8(name)); }

    // The file of every kind that cannot be opened.
    QString corruptFile()
    {
        const QString bad = file("повреден.fnr");
        const std::string whole = serializeLedger(generateLedger(50, 1));
        writeFile(bad.toStdString(), whole.substr(0, whole.size() / 3));
        return bad;
    }

    // After a failed open: a new, untitled ledger, and the first one whole on disk.
    void expectUntitledAndFirstLedgerWhole()
    {
        EXPECT_EQ(m_frame->document().path(), "");
        EXPECT_EQ(m_frame->document().operationCount(), 0u);
        EXPECT_TRUE(m_frame->windowTitle().startsWith(QStringLiteral("Без име")))
            << m_frame->windowTitle().toStdString();
        EXPECT_EQ(m_frame->view().table()->model()->rowCount(), 0);
        // Ctrl+S asks for a name (cancelled here) instead of writing over the first ledger.
        const int dialogs = m_host.dialogs;
        user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
        EXPECT_EQ(m_host.dialogs, dialogs + 1);
        expectFirstLedgerWhole();
    }
    void expectFirstLedgerWhole()
    {
        EXPECT_EQ(bytesOf(m_file), m_ledgerBefore);
        EXPECT_EQ(bytesOf(m_file + QStringLiteral(".bak")), m_backupBefore);
    }
    std::string m_ledgerBefore;
    std::string m_backupBefore;
};

} // namespace

namespace {

// Answers as a script, and first repaints the window behind the message, as the message box's
// own event loop does in the program.
class RepaintingPrompter final : public Prompter {
public:
    Answer show(const Message& message) override
    {
        if (whileShown) {
            whileShown();
        }
        return inner.show(message);
    }
    RecordingPrompter inner{Answer::Yes};
    std::function<void()> whileShown;
};

// What a person sees in the list's first rows at this moment.
QStringList visibleDescriptions(QTableView* table)
{
    table->viewport()->grab(); // paints every visible cell
    QStringList texts;
    for (int row = 0; row < std::min(table->model()->rowCount(), 5); ++row) {
        texts << table->model()->index(row, 3).data().toString();
    }
    return texts;
}

} // namespace

TEST_F(LedgerSafetyTest, TheListPaintedUnderAMessageHalfWayThroughACommandShowsNoFreedRows)
{
    RepaintingPrompter prompter;
    ScriptedHost host;
    m_frame.reset();
    auto frame = makeFrame(prompter, host);
    user::bringUp(frame.get());
    QTableView* table = frame->view().table();
    host.openPaths = {m_file.toStdString()};
    user::press(frame.get(), Qt::Key_O, Qt::ControlModifier);
    ASSERT_EQ(visibleDescriptions(table).size(), 5);
    ASSERT_FALSE(visibleDescriptions(table).front().isEmpty());

    // The error of a failed open comes once the ledger that was open is gone.
    QStringList seen;
    prompter.whileShown = [&] { seen = visibleDescriptions(table); };
    host.openPaths = {corruptFile().toStdString()};
    user::press(frame.get(), Qt::Key_O, Qt::ControlModifier);
    ASSERT_FALSE(prompter.inner.messages().empty());
    for (const QString& text : seen) {
        EXPECT_TRUE(text.isEmpty()) << text.toStdString();
    }

    // Auto-save's file dialog comes while the deleted rows are still in the list.
    prompter.whileShown = nullptr;
    m_store.writeInt("Settings", "AutoSave", 1);
    const QString other = file("друг.fnr");
    writeFile(other.toStdString(), serializeLedger(generateLedger(40, 9)));
    host.openPaths = {other.toStdString()};
    user::chooseMenu(frame.get(), {QStringLiteral("Файл"),
                                   QStringLiteral("Импортиране на данни от друг документ ...")});
    user::click(user::button(frame.get(), QStringLiteral("без филтър")));
    ASSERT_GT(table->model()->rowCount(), 5);
    seen.clear();
    host.whileOpen = [&] { seen = visibleDescriptions(table); };
    table->setFocus();
    user::press(frame.get(), Qt::Key_A, Qt::ControlModifier);
    user::chooseMenu(frame.get(),
                     {QStringLiteral("Редакция"), QStringLiteral("Изтрий маркираните")});
    EXPECT_EQ(frame->document().operationCount(), 0u);
    ASSERT_FALSE(seen.isEmpty());
    for (const QString& text : seen) {
        EXPECT_TRUE(text.isEmpty()) << text.toStdString();
    }
    host.whileOpen = nullptr;
    EXPECT_EQ(table->model()->rowCount(), 0);
}

TEST_F(LedgerSafetyTest, EveryRouteToABadFileLeavesAnUntitledLedgerAndCtrlSAsksForAName)
{
    // Ctrl+O, the recent files menu, a drop on the window, and the last file at start-up; the
    // kinds of bad file are the core's to tell apart.
    const QString bad = corruptFile();
    const QString gone = file("стар.fnr");
    struct Route {
        const char* name;
        std::function<void()> open;
    };
    const Route routes[] = {
        {"Ctrl+O",
         [&] {
             m_host.openPaths = {bad.toStdString()};
             user::press(m_frame.get(), Qt::Key_O, Qt::ControlModifier);
         }},
        {"recent files",
         [&] {
             writeFile(gone.toStdString(), serializeLedger(generateLedger(20, 5)));
             m_host.openPaths = {gone.toStdString(), m_file.toStdString()};
             user::press(m_frame.get(), Qt::Key_O, Qt::ControlModifier);
             user::press(m_frame.get(), Qt::Key_O, Qt::ControlModifier);
             QFile::remove(gone);
             user::chooseMenu(m_frame.get(),
                              {QStringLiteral("Файл"), QStringLiteral("Последно отваряни"),
                               QStringLiteral("2 ") + gone});
         }},
        {"drop",
         [&] {
             QMimeData data;
             data.setUrls({QUrl::fromLocalFile(bad)});
             const QPoint at = m_frame->rect().center();
             QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
             QApplication::sendEvent(m_frame.get(), &enter);
             ASSERT_TRUE(enter.isAccepted());
             QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
             QApplication::sendEvent(m_frame.get(), &drop);
         }},
        {"start-up",
         [&] {
             m_store.writeInt("Settings", "AutoOpen", 1);
             m_store.writeText("Settings", "LastFileUsed", bad.toStdString());
             m_frame.reset();
             m_frame = makeFrame(m_prompter, m_host);
             user::bringUp(m_frame.get());
             EXPECT_TRUE(m_frame->startUp({QStringLiteral("finora")}));
         }},
    };
    for (const Route& route : routes) {
        SCOPED_TRACE(route.name);
        openWithKeys(m_file);
        ASSERT_EQ(m_frame->document().path(), m_file.toStdString());
        m_prompter.clear();
        route.open();
        ASSERT_FALSE(m_prompter.messages().empty());
        EXPECT_EQ(m_prompter.messages().back().icon, MessageIcon::Error);
        expectUntitledAndFirstLedgerWhole();
    }
    // Named on the command line: start-up ends, and nothing was kept to be saved.
    auto second = makeFrame(m_prompter, m_host);
    EXPECT_FALSE(second->startUp({QStringLiteral("finora"), bad}));
    EXPECT_EQ(second->document().path(), "");
}

TEST_F(LedgerSafetyTest, ImportNeverTouchesTheOpenLedgersPath)
{
    const QString other = file("друг.fnr");
    writeFile(other.toStdString(), serializeLedger(generateLedger(30, 8)));
    m_host.openPaths = {other.toStdString()};
    user::chooseMenu(m_frame.get(), {QStringLiteral("Файл"),
                                     QStringLiteral("Импортиране на данни от друг документ ...")});
    EXPECT_EQ(m_frame->document().path(), m_file.toStdString());
    EXPECT_GT(m_frame->document().operationCount(), 500u);
    expectFirstLedgerWhole(); // nothing written until the user saves
    user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_NE(bytesOf(m_file), m_ledgerBefore);
    EXPECT_EQ(bytesOf(other), serializeLedger(generateLedger(30, 8)));
}

TEST_F(LedgerSafetyTest, ASecondWindowIsWarnedAndItsReadOnlyCopyCannotSaveOverTheFile)
{
    RecordingPrompter prompter2{Answer::Yes};
    ScriptedHost host2;
    auto second = makeFrame(prompter2, host2);
    user::bringUp(second.get());
    host2.openPaths = {m_file.toStdString()};
    prompter2.queue(Answer::No);
    user::press(second.get(), Qt::Key_O, Qt::ControlModifier);
    ASSERT_EQ(prompter2.messages().size(), 1u);
    EXPECT_EQ(prompter2.messages().back().caption, DocumentStorage::kLockedCaption);
    EXPECT_EQ(second->document().path(), "");

    host2.openPaths = {m_file.toStdString()};
    prompter2.queue(Answer::Yes);
    user::press(second.get(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(second->document().operationCount(), 500u);
    EXPECT_TRUE(second->isReadOnly());
    EXPECT_TRUE(second->windowTitle().contains(QStringLiteral("само за четене")));

    // Deleting rows is refused as it is asked for, with one message, before any work is done.
    second->view().table()->setFocus();
    user::press(second.get(), Qt::Key_A, Qt::ControlModifier);
    user::chooseMenu(second.get(),
                     {QStringLiteral("Редакция"), QStringLiteral("Изтрий маркираните")});
    EXPECT_EQ(second->document().operationCount(), 500u);
    EXPECT_EQ(prompter2.messages().back(),
              (Message{kReadOnlyCaption, kReadOnlyText, MessageIcon::Error, MessageButtons::Ok}));
    // Saving over the file stays refused, with the offer of another name, declined.
    prompter2.queue(Answer::No);
    user::press(second.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(prompter2.messages().back().text,
              DocumentStorage::readOnlyDocumentText(m_file.toStdString()));
    expectFirstLedgerWhole();

    // Closing the first window lets the ledger go.
    m_frame.reset();
    EXPECT_FALSE(LedgerLock::liveHolder(m_file.toStdString()).has_value());
    second->close();
}

TEST_F(LedgerSafetyTest, ALedgerChangedByAnotherProgramIsNotSavedOverSilently)
{
    // The user changes the open ledger...
    m_frame->view().table()->setFocus();
    user::press(m_frame.get(), Qt::Key_A, Qt::ControlModifier);
    user::chooseMenu(m_frame.get(), {QStringLiteral("Редакция"),
                                     QStringLiteral("Установи маркираните записи като изплатени")});
    ASSERT_TRUE(m_frame->document().isModified());

    // ...while another program writes it (the command line refuses without --force).
    writeFile(m_file.toStdString(), serializeLedger(generateLedger(40, 9)));
    const std::string imported = bytesOf(m_file);

    // Ctrl+S asks; Cancel writes nothing and keeps the changes.
    m_prompter.queue(Answer::Cancel);
    user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(m_prompter.messages().back().caption, DocumentStorage::kChangedCaption);
    EXPECT_EQ(bytesOf(m_file), imported);
    EXPECT_TRUE(m_frame->isWindowModified());
    // "No" saves under another name.
    m_prompter.queue(Answer::No);
    m_host.paths = {file("мой.fnr").toStdString()};
    user::press(m_frame.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(bytesOf(m_file), imported);
    EXPECT_EQ(m_frame->document().path(), file("мой.fnr").toStdString());
    EXPECT_TRUE(m_frame->windowTitle().startsWith(QStringLiteral("мой.fnr")));
}

namespace {

// Scripted file dialogs, but the desktop program's own way out of the program.
class ExitingHost final : public DocumentHost {
public:
    std::optional<std::string> chooseSavePath(const std::string&) override { return std::nullopt; }
    std::optional<std::string> chooseOpenPath(const std::string&, const std::string&) override
    {
        if (openPaths.empty()) {
            return std::nullopt;
        }
        auto p = openPaths.front();
        openPaths.pop_front();
        return p;
    }
    std::optional<std::string> chooseExportPath(const ExportRequest&) override
    {
        return std::nullopt;
    }
    std::optional<std::string> chooseImportPath(const ExportRequest&) override
    {
        return std::nullopt;
    }
    void exitProgram(int status) override { real.exitProgram(status); }

    std::deque<std::string> openPaths;
    QtDocumentHost real;
};

} // namespace

TEST(ProgramExit, TheNewerFileExitFinishesTheBackupAlreadyQueued)
{
    QTemporaryDir dir;
    const QString big = dir.filePath(QStringLiteral("голям.fnr"));
    const std::string bytes = serializeLedger(generateLedger(60'000, 1)); // about 5 MB
    writeFile(big.toStdString(), bytes);
    const QString newer = dir.filePath(QStringLiteral("нов.fnr"));
    std::string newerBytes = serializeLedger(Ledger());
    newerBytes.replace(0, 8, std::string("\x00\x00\x00\x00\x00\x00\xF8\x3F", 8)); // 1.5
    writeFile(newer.toStdString(), newerBytes);

    MemorySettingsStore store;
    FixedClock clock{DateTime::fromParts(2026, 11, 1, 12)};
    RecordingPrompter prompter;
    ExitingHost host;
    auto frame = std::make_unique<CMainFrame>(store, prompter, host, clock);
    user::bringUp(frame.get());
    host.openPaths = {big.toStdString()};
    user::press(frame.get(), Qt::Key_O, Qt::ControlModifier);
    ASSERT_EQ(frame->document().operationCount(), 60'000u);

    // Inside the event loop, as in the program: save (the backup is queued), then open a file
    // of a newer format, which ends the program.
    QTimer::singleShot(0, frame.get(), [&] {
        user::press(frame.get(), Qt::Key_S, Qt::ControlModifier);
        host.openPaths = {newer.toStdString()};
        user::press(frame.get(), Qt::Key_O, Qt::ControlModifier);
    });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(host.real.exitRequested(), 0);
    EXPECT_EQ(prompter.messages().back().text, DocumentStorage::kNewerFileText);
    frame.reset(); // what returning from main() does
    EXPECT_EQ(bytesOf(big + QStringLiteral(".bak")), bytes);
    EXPECT_FALSE(QFile::exists(
        QString::fromStdString(pathToUtf8(LedgerLock::lockPathFor(big.toStdString())))));
}
