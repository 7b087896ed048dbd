#pragma once

#include "core/model/document_host.h"
#include "core/model/finora_doc.h"
#include "core/model/prompter.h"
#include "core/settings/settings.h"
#include "core/storage/backup_writer.h"
#include "core/storage/file_io.h"
#include "core/storage/ledger_format.h"
#include "core/storage/ledger_lock.h"

#include <memory>
#include <optional>
#include <string>

namespace finora {

// The document's life on disk: open with the version questions, save with its backup, the
// save-changes question, and auto-save after each change. Everything it has to say goes through
// the prompter; ending the program is the host's to do.
//
// No route writes a file the user did not ask for: a failed open leaves a new, untitled ledger
// (never the old path), a save refuses a file that is read-only or was changed by another
// program since it was read, and the desktop program keeps a lock beside the open ledger.
class DocumentStorage {
public:
    // How an open ended. Each failure has been told to the user; all but Cancelled leave a new,
    // untitled ledger.
    enum class OpenResult {
        Opened,
        Newer,              // made by a newer program; the version rules end the program
        ConversionDeclined, // an older format the user would not convert; the program ends too
        Corrupt,            // ends early, or a length says more than remains
        Unreadable,         // missing, not permitted, a folder, a pipe...: see lastFileError()
        Cancelled,          // the user would not open a ledger held elsewhere; nothing changed
    };

    // Why the last save did not happen. ReadOnly: the file may not be written, or the document
    // was opened read-only, and the user did not pick another name; WriteError: the system's
    // reason is lastFileError().
    enum class SaveFailure { None, WriteError, ReadOnly, ChangedOnDisk, HeldByOther, Cancelled };

    // What a save does when the file was changed by someone else since it was read or written.
    enum class ChangedOnDisk { Ask, Refuse, Overwrite };
    // Whether an open asks before it reads a file of an older format on.
    enum class OlderFormat { Ask, Convert };

    DocumentStorage(CFinoraDoc& doc, Settings& settings, Prompter& prompter, DocumentHost& host,
                    BackupWriter& backups);

    // The desktop program holds a lock on its open ledger under this program name; without one
    // (the command line locks each command itself) no lock is taken.
    void setLockProgram(std::string program) { m_lockProgram = std::move(program); }
    void setChangedOnDisk(ChangedOnDisk policy) { m_changedOnDisk = policy; }
    void setOlderFormat(OlderFormat policy) { m_olderFormat = policy; }

    // Empties the document, then reads the file. A newer file, or an older one the user will
    // not convert, asks the host to end the program; a file that cannot be read leaves a new,
    // untitled ledger and says so.
    OpenResult open(const std::string& path);
    // What the system said when the last open was Unreadable or the last save a WriteError;
    // None after any other outcome.
    FileError lastFileError() const { return m_lastFileError; }
    // The format version of the file last read by open(); the ledger itself forgets it.
    double openedVersion() const { return m_openedVersion; }
    // A new, untitled, unmodified ledger; the lock of the one before is let go.
    void closeDocument();
    // Opened while another program held it, or from a file that may not be written.
    bool isReadOnly() const { return m_readOnly; }

    // Writes the ledger to `path`, then its backup; on success the document takes the path and
    // is no longer modified. A failure is reported and leaves any old file as it was.
    bool save(const std::string& path);
    SaveFailure lastSaveFailure() const { return m_lastFailure; }
    // Save to the document's path, or to one the host asks for when it has none.
    bool saveCommand();
    // Asks whether to keep the changes of a modified document; false means stay (Cancel, or a
    // save that did not happen).
    bool saveModified();
    // Saves after a change when the document is modified; asks for a name when it has none, and
    // a cancelled dialog just leaves the document modified. A read-only document is left alone.
    void autoSave();

    // Connects the document's change notifications to auto-save under the `AutoSave` option.
    void attach();

    static const char* const kNewerFileText;
    static const char* const kConvertCaption;
    static const char* const kConvertText;
    static const char* const kCannotContinueText;
    static const char* const kSaveChangesText;
    static const char* const kLockedCaption;
    static const char* const kNotSavedCaption;
    static const char* const kChangedCaption;

    // The messages that name a file or a person.
    static std::string heldByOtherText(const std::string& path, const LockOwner& owner);
    static std::string staleLockText(const std::string& path, const LockOwner& owner);
    static std::string readOnlyDocumentText(const std::string& path);
    static std::string readOnlyFileText(const std::string& path);
    static std::string changedOnDiskText(const std::string& path);
    static std::string targetHeldText(const std::string& path, const LockOwner& owner);
    static std::string cannotOpenText(const std::string& path, FileError error);
    static std::string corruptFileText(const std::string& path);
    static std::string cannotWriteText(const std::string& path, FileError error);
    static std::string damagedCompanionText(const std::string& path, const std::string& where);
    static std::string newerCompanionText(const std::string& path);
    static std::string unreadableCompanionText(const std::string& path, FileError error);
    static const char* const kCompanionCaption;

private:
    bool fail(SaveFailure why)
    {
        m_lastFailure = why;
        return false;
    }
    // Who holds the ledger, asked before an open: Yes breaks a lock whose holder may be gone,
    // No opens read-only, Cancel leaves everything as it was.
    Answer askAboutHolder(const std::string& path, const LockOwner& holder);
    // Says why the file was not read into the document, and ends the program where the version
    // rules say so.
    OpenResult refuseFile(const std::string& path, ReadStatus status);
    // Says why the file cannot be written and offers to save under another name.
    bool refuseAndOfferAnotherName(const std::string& text);
    bool saveUnderAnotherName();
    // True when the file at the document's path is still the one this program read or wrote.
    bool unchangedOnDisk(const std::string& path) const;
    // Reads the companion of the ledger just opened; a damaged one is told about and, unless
    // the user agrees, kept from being written over.
    void openCompanion(const std::string& ledgerPath);
    // The companion's bytes for a save to `ledgerPath`, or nothing when none is to be written
    // there: nothing kept and no file to bring up to date, or a file the user wants left alone.
    std::shared_ptr<const std::string> companionBytesFor(const std::string& ledgerPath) const;

    CFinoraDoc& m_doc;
    Settings& m_settings;
    Prompter& m_prompter;
    DocumentHost& m_host;
    BackupWriter& m_backups;
    double m_openedVersion = 0.0;
    std::string m_lockProgram;
    ChangedOnDisk m_changedOnDisk = ChangedOnDisk::Ask;
    OlderFormat m_olderFormat = OlderFormat::Ask;
    LedgerLock m_lock;
    bool m_readOnly = false;
    // The file as this program last read or wrote it; nothing known for a new ledger.
    std::optional<DiskState> m_diskState;
    // A companion file that could not be read and must not be written over; empty: none.
    std::string m_keptCompanion;
    SaveFailure m_lastFailure = SaveFailure::None;
    FileError m_lastFileError = FileError::None;
};

// Newer and ConversionDeclined: the host has been asked to end the program, and the caller stops.
inline bool endsProgram(DocumentStorage::OpenResult result)
{
    return result == DocumentStorage::OpenResult::Newer ||
           result == DocumentStorage::OpenResult::ConversionDeclined;
}

} // namespace finora
