#pragma once

#include "cli/arguments.h"
#include "cli/cli_app.h"
#include "core/model/clock.h"
#include "core/model/document_host.h"
#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/settings/overlay_settings_store.h"
#include "core/settings/settings.h"
#include "core/storage/backup_writer.h"
#include "core/storage/document_storage.h"
#include "core/storage/ledger_lock.h"

#include <string>
#include <vector>

namespace finora::cli {

// Answers the core's questions the careful way, so that nothing is written over that the
// command line did not name. What went wrong is learnt from the results, never from the messages.
class CliPrompter final : public Prompter {
public:
    Answer show(const Message& message) override;
};

// What every command works with: one document and the code paths the desktop program uses.
class Session {
public:
    Session(const Arguments& args, const SettingsStore& userSettings, Renderer* renderer);

    // A command that writes a ledger holds its lock from before it reads until it has written:
    // another finora-cli command is waited for, and a ledger open in the desktop program is
    // refused unless --force says to write it all the same.
    void lockForWriting(const std::string& path);

    CFinoraDoc& doc() { return m_doc; }
    const Arguments& args() const { return m_args; }
    Settings& settings() { return m_settings; }
    Prompter& prompter() { return m_prompter; }
    double openedVersion() const { return m_storage.openedVersion(); }
    const Clock& clock() const { return m_clock; }
    Renderer& renderer() const;

    // Opens the ledger; with `needOperations`, a locked one needs the right --password.
    void open(const std::string& path, bool needOperations);
    // A protected ledger needs the right --password: to be unlocked for this command, or to
    // have its protection removed.
    void unlockWithPassword(CFinoraDoc::LockCheck mode);
    // Writes the ledger and waits for its backup.
    void save(const std::string& path);
    // The backups of this command's saves that could not be written.
    std::vector<BackupFailure> backupFailures() { return m_backups.takeFailures(); }

private:
    // The exit status and the line for the user, from what the storage says went wrong.
    Failure openFailure(DocumentStorage::OpenResult result, const std::string& path) const;
    Failure saveFailure(DocumentStorage::SaveFailure why, const std::string& path) const;

    const Arguments& m_args;
    Renderer* m_renderer;
    OverlaySettingsStore m_store;
    Settings m_settings;
    SystemClock m_system;
    FixedClock m_fixed;
    const Clock& m_clock;
    CliPrompter m_prompter;
    NoDocumentHost m_host;
    BackupWriter m_backups;
    CFinoraDoc m_doc;
    DocumentStorage m_storage;
    LedgerLock m_lock; // last: let go only once the backup is written
};

} // namespace finora::cli
