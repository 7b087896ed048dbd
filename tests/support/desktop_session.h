#pragma once

// The desktop program as a test drives it: a main window over an in-memory settings store, a
// scripted file chooser, a recording prompter and a fixed clock, with a generated ledger opened
// by Ctrl+O and every entry in view.
#include "core/demo/ledger_generator.h"
#include "core/model/recording_prompter.h"
#include "core/settings/memory_settings_store.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_format.h"
#include "gui/window/main_frame.h"
#include "support/scripted_host.h"
#include "support/user.h"

#include <QLineEdit>
#include <QTableView>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace finora::test {

// In the operation editor: "...", a double click on the first category of the chooser's tree,
// Enter.
inline void chooseFirstCategory(QDialog* editor)
{
    user::ExpectDialog chooser([](QDialog* c) {
        auto* tree = user::child<QTreeWidget>(c, "categoryTree");
        ASSERT_NE(tree, nullptr);
        user::doubleClickItem(tree, tree->topLevelItem(0));
        QTest::keyClick(c, Qt::Key_Return);
    });
    user::click(user::button(editor, QStringLiteral("...")));
    chooser.verify();
}

class DesktopSession : public ::testing::Test {
protected:
    // A generated ledger written to the session's folder; it becomes the session's file.
    QString writeGenerated(const QString& name, int operations, int seed)
    {
        m_file = m_dir.filePath(name);
        writeFile(m_file.toStdString(), serializeLedger(generateLedger(operations, seed)));
        return m_file;
    }

    // The main window, shown and active, with no ledger opened yet.
    void startFrame()
    {
        m_frame = std::make_unique<CMainFrame>(m_store, m_prompter, m_host, m_clock);
        user::bringUp(m_frame.get());
    }

    // Ctrl+O, and the file chooser answered with `path`.
    void openWithKeys(const QString& path)
    {
        m_host.openPaths = {path.toStdString()};
        user::press(m_frame.get(), Qt::Key_O, Qt::ControlModifier);
    }

    void openGenerated(const QString& name, int operations, int seed)
    {
        writeGenerated(name, operations, seed);
        startFrame();
        openWithKeys(m_file);
        ASSERT_EQ(m_frame->document().operationCount(), static_cast<std::size_t>(operations));
        user::click(user::button(m_frame.get(), QStringLiteral("без филтър")));
        m_prompter.clear();
    }

    const Message& lastMessage() const { return m_prompter.messages().back(); }
    static QStringList settingsMenu(const char* item)
    {
        return {QStringLiteral("Настройки"), QString::fromUtf8(item)};
    }

    // "Задаване на постоянна защита" from the menu, the password typed into both fields, Enter.
    void protectWith(const QString& password)
    {
        user::ExpectDialog dialog([password](QDialog* d) {
            for (QLineEdit* field : d->findChildren<QLineEdit*>()) {
                user::type(field, password);
            }
            QTest::keyClick(d, Qt::Key_Return);
        });
        user::chooseMenu(m_frame.get(), settingsMenu("Задаване на постоянна защита"));
        dialog.verify();
    }

    // The session's ledger as it stands on disk.
    Ledger ledgerOnDisk() const
    {
        std::string bytes;
        EXPECT_TRUE(readWholeFile(m_file.toStdString(), bytes));
        Ledger ledger;
        ByteReader reader(bytes);
        EXPECT_EQ(readLedger(reader, ledger, [](double) { return true; }).status, ReadStatus::Ok);
        return ledger;
    }

    QTableView* table() { return m_frame->view().table(); }
    // What a cell of the list shows.
    QString cell(int row, int column)
    {
        return table()->model()->index(row, column).data().toString();
    }
    int shownRows() { return table()->model()->rowCount(); }

    QTemporaryDir m_dir;
    MemorySettingsStore m_store;
    FixedClock m_clock{DateTime::fromParts(2026, 11, 1, 12)};
    ScriptedHost m_host;
    RecordingPrompter m_prompter{Answer::Yes};
    QString m_file;
    std::unique_ptr<CMainFrame> m_frame;
};

} // namespace finora::test
